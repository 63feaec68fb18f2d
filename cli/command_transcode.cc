// vxnls transcode
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include "cli/coding.h"
#include "cli/commands.h"
#include "cli/file.h"
#include "cli/input.h"
#include "cli/options.h"
#include "cli/session.h"
#include "cli/suggest.h"
#include "cli/table/progress.h"
#include "cli/text.h"

namespace vxcli {

namespace {

constexpr std::string_view coding_words[] = {"utf-8", "modified-utf-8", "utf-16le", "utf-16be", "utf-32le", "utf-32be"};
constexpr std::string_view error_words[] = {"fail", "replace", "skip"};
constexpr std::string_view mark_words[] = {"keep", "write", "drop"};

constexpr Option from{.name = "from",
                      .value = "CODING",
                      .help = "coding of the input; utf-8 when not given",
                      .choices = coding_words,
                      .completes = Completes::choices};
constexpr Option to{.name = "to",
                    .value = "CODING",
                    .help = "coding of the output; utf-8 when not given",
                    .choices = coding_words,
                    .completes = Completes::choices};
constexpr Option on_error{
    .name = "on-error",
    .value = "WHAT",
    .help = "what to do with bytes that are no character: fail, replace them by U+FFFD, or skip them",
    .choices = error_words,
    .completes = Completes::choices};
constexpr Option mark{.name = "bom",
                      .value = "WHAT",
                      .help = "a byte order mark at the start: keep it as it is, write one, or drop it",
                      .choices = mark_words,
                      .completes = Completes::choices};

constexpr uint32_t byte_order_mark = 0xFEFF;
constexpr uint32_t replacement = 0xFFFD;
constexpr size_t block_size = size_t{1} << 16;

/// A file, or standard input, read in blocks.
class Source {
 public:
  explicit Source(const std::string* path) : file_(path) {}

  const std::string& name() const { return file_.name(); }
  bool is_pausing() const { return !is_readable(file_.descriptor()); }
  uint64_t size() const { return bytes_left(file_.descriptor()); }

  /// Appends a block; false at the end.
  bool read_more(std::vector<uint8_t>& bytes) const {
    const size_t before = bytes.size();
    bytes.resize(before + block_size);
    const size_t count = read_some(file_.descriptor(), name(), bytes.data() + before, block_size, ::read);
    bytes.resize(before + count);
    return count > 0;
  }

 private:
  File file_;
};

enum class OnError { fail, replace, skip };

class Transcoder {
 public:
  explicit Transcoder(Invocation& invocation) : invocation_(invocation), from_(chosen(from)), to_(chosen(to)) {
    const std::string what = invocation.arguments.value(on_error).value_or("fail");
    on_error_ = what == "replace" ? OnError::replace : what == "skip" ? OnError::skip : OnError::fail;
    const std::string with_mark = invocation.arguments.value(mark).value_or("keep");
    keeps_mark_ = with_mark == "keep";
    if (with_mark == "write") to_.encode(byte_order_mark, text_);
  }

  ExitCode run(const std::string* path) {
    const Source source(path);
    const uint64_t size = source.size();
    table::Progress progress(invocation_.arguments.has(options::quiet), table::Meanwhile::output);
    std::vector<uint8_t> bytes;
    for (bool more = true; more;) {
      if (source.is_pausing()) hand_on(true);
      more = source.read_more(bytes);
      const size_t taken = decode(bytes, !more, source.name());
      bytes.erase(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(taken));
      offset_ += taken;
      hand_on(false);
      progress.show(offset_, size);
    }
    if (faults_ == 0) return ExitCode::done;
    invocation_.messages.note(fmt::format("{}: {} that {} no {}, the first at byte {}: {}", source.name(),
                                          faults_ == 1 ? "1 place" : fmt::format("{} places", faults_),
                                          faults_ == 1 ? "is" : "are", from_.name, first_fault_,
                                          on_error_ == OnError::skip ? "left out" : "replaced by U+FFFD"));
    return ExitCode::some_unread;
  }

 private:
  const Coding& chosen(const Option& option) const {
    return *find_coding(invocation_.arguments.value(option).value_or("utf-8"));
  }

  void hand_on(bool flush) {
    invocation_.out.put(text_);
    text_.clear();
    if (flush) invocation_.out.flush();
  }

  void write(uint32_t code_point, bool at_start) {
    if (at_start && code_point == byte_order_mark && !keeps_mark_) return;
    to_.encode(code_point, text_);
  }

  /// Handles every character that is whole; gives the bytes used.
  size_t decode(const std::vector<uint8_t>& bytes, bool last, const std::string& name) {
    const std::span<const uint8_t> all(bytes);
    size_t at = 0;
    while (at < all.size()) {
      // The very first character may be a byte order mark.
      if (from_.decode_run != nullptr && to_.encoder != nullptr && offset_ + at != 0) {
        if (units_.size() < all.size() - at) units_.resize(all.size() - at);
        const Coding::Run run = from_.decode_run(all.subspan(at), units_.data());
        encode_run(to_, std::span(units_).first(run.characters), text_);
        at += run.bytes;
        if (at == all.size()) break;
      }
      const Step step = from_.decode(all.subspan(at));
      if (step.outcome == Step::Outcome::character) {
        write(step.code_point, offset_ + at == 0);
        at += step.bytes;
        continue;
      }
      if (step.outcome == Step::Outcome::wanting && !last) break;
      const size_t length = step.outcome == Step::Outcome::wanting ? all.size() - at : step.bytes;
      fault(all.subspan(at, length), offset_ + at, step.outcome == Step::Outcome::wanting, name);
      at += length;
    }
    return at;
  }

  void fault(std::span<const uint8_t> bytes, uint64_t place, bool ends, const std::string& name) {
    if (on_error_ == OnError::fail) {
      std::string shown;
      for (const uint8_t byte : bytes) shown += fmt::format("{}{:02X}", shown.empty() ? "" : " ", byte);
      hand_on(true);
      fail(ExitCode::some_unread, "{}: at byte {}: {} {} {}", name, place, shown,
           ends ? "is the beginning of a character that the end cuts off, in" : "is no", from_.name);
    }
    if (faults_++ == 0) first_fault_ = place;
    if (on_error_ == OnError::replace) to_.encode(replacement, text_);
  }

  Invocation& invocation_;
  const Coding& from_;
  const Coding& to_;
  OnError on_error_ = OnError::fail;
  bool keeps_mark_ = true;
  std::vector<uint32_t> units_;
  std::string text_;
  uint64_t offset_ = 0;  // of the bytes that are being decoded
  uint64_t faults_ = 0;
  uint64_t first_fault_ = 0;
};

ExitCode run(Invocation& invocation) { return Transcoder(invocation).run(file_named(invocation.arguments.values())); }

constexpr Argument arguments[] = {options::file};
constexpr const Option* command_options[] = {&from, &to, &on_error, &mark};
constexpr Example examples[] = {
    {"printf 'Grüße' | vxnls transcode --to utf-16le | vxnls transcode --from utf-16le", "Grüße"},
    {"printf 'a\\377b' | vxnls transcode --on-error replace", "a\uFFFDb"},
    {"printf abc | vxnls transcode --to utf-16be --bom write | vxnls transcode --from utf-16be --bom drop", "abc"}};

}  // namespace

const Command transcode{
    .name = "transcode",
    .summary = "Converts between UTF-8, modified UTF-8, UTF-16 and UTF-32",
    .description =
        "The input is read in blocks, whatever its size. Only well-formed text passes: surrogates, overlong forms and "
        "code points above U+10FFFF are faults, and the message names the byte where the first one stands. Modified "
        "UTF-8 writes NUL as two bytes and characters above U+FFFF as two surrogates of three bytes each.\n"
        "\n"
        "With --on-error replace or skip the rest is converted, and the exit code is 1 when there was a fault.",
    .arguments = arguments,
    .options = command_options,
    .examples = examples,
    .run = run};

}  // namespace vxcli
