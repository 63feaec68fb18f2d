// The command with its input cut anywhere, and with each of its calls made to fail: every allocation, every call on a
// file.
#undef _FORTIFY_SOURCE  // with which headers define some of the calls themselves
#include <fcntl.h>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "cli/run.h"
#include "tests/host/failing_new.h"
#include "tests/host/temporary_folder.h"
#include "tests/support/domain.h"
#include "vxnls/vxhost.h"

extern "C" [[gnu::weak]] void __gcov_dump();

namespace {

namespace fs = std::filesystem;
using vxtest::Ways;

enum class Call { none, read, write, tell, close, rename };  // tell: to standard error

/// Of calls on standard input, output and error and on the files of the folder, and of allocations.
struct Fault {
  Call call = Call::none;
  long at = 0;      // which of these calls, from 1; 0: none
  int error = 0;    // its errno; 0: a single byte is taken or given
  size_t most = 0;  // bytes that any read gives at most; then no input is ever ready, so that each read is waited for
  int64_t spared = -1;  // allocations before the one that fails; less than 0: none fails
  bool lasting = false;
  Ways* ways = nullptr;
} plan;
char watched_folder[4096];  // no text of the heap, which may be told to fail, too
std::atomic<long> calls;

bool watches(int descriptor) {
  if (descriptor <= STDERR_FILENO) return true;
  char link[64], path[4096];
  static_cast<void>(snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor));
  const ssize_t length = readlink(link, path, sizeof path);
  return length > 0 && std::string_view(path, static_cast<size_t>(length)).starts_with(watched_folder);
}

/// Whether it is this call's turn.
bool hits(Call call, int descriptor) { return call == plan.call && watches(descriptor) && ++calls == plan.at; }

/// Makes the call, or fails or falls short when it is its turn.
ssize_t transfer(Call call, long number, int descriptor, const void* bytes, size_t count) {
  if (hits(call, descriptor)) {
    if (plan.error != 0) {
      errno = plan.error;
      return -1;
    }
    count = std::min<size_t>(count, 1);
  }
  return syscall(number, descriptor, bytes, count);
}

}  // namespace

extern "C" {

ssize_t read(int descriptor, void* bytes, size_t count) {
  if (plan.most > 0 && watches(descriptor)) count = std::min(count, plan.most);
  return transfer(Call::read, SYS_read, descriptor, bytes, count);
}

ssize_t write(int descriptor, const void* bytes, size_t count) {
  return transfer(descriptor == STDERR_FILENO ? Call::tell : Call::write, SYS_write, descriptor, bytes, count);
}

int close(int descriptor) {
  const bool hit = hits(Call::close, descriptor);
  const auto result = static_cast<int>(syscall(SYS_close, descriptor));
  if (hit) errno = plan.error;
  return hit ? -1 : result;
}

int rename(const char* from, const char* to) noexcept {
  const bool hit = hits(Call::rename, STDIN_FILENO);
  if (hit) errno = plan.error;
  return hit ? -1 : static_cast<int>(syscall(SYS_rename, from, to));
}

int poll(pollfd* descriptors, nfds_t count, int timeout) {
  if (plan.most > 0 && timeout == 0) return 0;
  return static_cast<int>(syscall(SYS_poll, descriptors, count, timeout));
}
}

namespace {

std::string content(const fs::path& file) {
  std::ostringstream text;
  text << std::ifstream(file, std::ios::binary).rdbuf();
  return text.str();
}

/// Quotes, a line end within them, values that cannot be read, an empty line, a last line without its end.
constexpr std::string_view table =
    "\xEF\xBB\xBFid,when,\"a\r\nb\",amount\r\n1,31.12.2021,\"\"\"\",\"1.234,50\"\r\n\"2\",\"1.2.2022\","
    "\"y\n\"\"z\"\"\",x\n"
    "3,??,,\"1,5\"\r\n\r\n4,13.1.2022,q,9";
const std::string old_content = "what was there before\n";

struct Line {
  std::string words;  // "@" stands for the folder
  std::string_view input = {};
  const char* written = nullptr;  // a file that it writes
  size_t most = 10;               // bytes a read, so that there are a few
};

/// At least one for each command.
const std::vector<Line> lines = [] {
  std::vector<Line> all = {
      {"format date -l de_DE --style long", "2026-11-21\nx\n2026-11-22\n"},
      {"parse date --json -l de_DE", "21.11.2026\nx\n22.11.2026\n"},
      {"parse datetime -l de_DE -z Europe/Berlin", "21.11.2026 14:05:09\n"},
      {"transcode --to utf-16le --on-error replace", "a\xFFß日😀\xC3(\xF0\x9F\n"},
      {"recognise -l auto --locales de_DE,en_US -j 1 --json", table, nullptr, 50},
      {"recognise -l de_DE --emit-profile @/again -j 2 @/table.csv", "", "again", 40},
      {"recognise -l de_DE --html @/page", table, "page", 50},
      {"normalise -c when:date,amount:number -l de_DE --rejects @/rejects -j 1 @/table.csv", "", "rejects", 40},
      {"normalise --profile @/profile --invalid mark -j 2", table, nullptr, 2000},
      {"normalise -l de_DE -c a:number --format jsonl -j 4", "{\"a\":\"\\n\"}\n\n{\"b\":{},\"a\":\"1,5\"}\r\nx\n{}"},
      {"normalise -l de_DE --sample all -c when:date --to-locale en_GB @/table.csv", "", nullptr, 40},
  };
  std::istringstream others(R"(--help
format datetime --version|format dat 2026-11-21|format date 2026-11-21 -l de_DE|format time 14:05 -l fr_CA
format datetime 2026-11-21T14:05:09Z -l ar_EG --zone Africa/Cairo|format number 1234.5 -l de_DE
format percent 0.5 -l tr_TR|format currency 12.5 -l ja_JP|format integer 1234567 -l hi_IN
parse time 14:05:09 --explain -l de_DE|parse number 1.234,5 -l de_DE|parse integer 1.234 -l de_DE
transcode --to utf-16le @/dates|case upper straße|compare a B --json|chars aé|locale list --details de_
locale show de_DE|locale check vi_VN|calendar 2000-02-29|zone info Europe/Berlin 2026-07-01T00:00|zone list
completion bash|help format)");
  for (std::string some, one; std::getline(others, some);) {
    for (std::istringstream words(some); std::getline(words, one, '|');) all.push_back({one});
  }
  return all;
}();

/// What a run tells beside its output.
struct Counts {
  long calls = 0;      // of the kind that was to fail
  int64_t failed = 0;  // the number of the allocation that failed; 0: none
  int64_t lost = 0;    // what the host holds after its end
};

struct Ending : Counts {
  int code = -1;  // 128 and the signal's number when one ended it
  std::string out, err, file;

  auto told() const { return std::tie(code, out, err, file); }
};

/// What several processes see.
template <class T, class... Parts>
T* shared(Parts... parts) {
  void* const memory = mmap(nullptr, sizeof(T), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) throw std::bad_alloc();
  return new (memory) T(parts...);
}

class Faults : public testing::Test {
 protected:
  Faults() : out_(memfd_create("out", 0)), err_(memfd_create("err", 0)), told_(shared<Counts>()) {
    setenv("LANG", "en_US.UTF-8", 1);
    setenv("TZ", "UTC", 1);
    place_.write("dates", "31.12.2021\nx\n1.2.2022\n");
    place_.write("table.csv", std::string(table));
    for (const Line& line : lines) {
      if (line.written != nullptr) place_.write(line.written, old_content);
    }
    EXPECT_LE(run({"recognise -q -l de_DE --emit-profile @/profile @/table.csv"}).code, 1);
    files_ = count_files();
  }
  ~Faults() override {
    EXPECT_EQ(count_files(), files_);  // nothing is left beside what was written
    vxhostClose(host_);
    close(out_);
    close(err_);
  }

  long count_files() const { return std::distance(fs::directory_iterator(folder_), {}); }
  /// What it reads once a process is there from then on.
  void open_host() { ASSERT_EQ(vxhostOpen(nullptr, &host_), 0u); }

  /// In a process of its own, so that nothing of a run is there in the next.
  Ending run(const Line& line, const Fault& fault = {}) {
    if (line.written != nullptr) place_.write(line.written, old_content);
    std::vector<std::string> words;
    std::istringstream in(line.words);
    for (std::string word; in >> word;) {
      if (word.starts_with('@')) word.replace(0, 1, folder_.string());
      words.push_back(word);
    }
    std::vector<char*> pointers;
    pointers.reserve(words.size());
    for (std::string& word : words) pointers.push_back(word.data());
    int ends[2];
    if (pipe(ends) != 0) throw std::runtime_error("no pipe");
    EXPECT_EQ(write(ends[1], line.input.data(), line.input.size()), static_cast<ssize_t>(line.input.size()));
    for (const int file : {out_, err_}) EXPECT_EQ(ftruncate(file, 0) + lseek(file, 0, SEEK_SET), 0);
    const int64_t alive = vxhostAlive();

    const pid_t child = fork();
    if (child == 0) {
      close(ends[1]);
      dup2(ends[0], STDIN_FILENO);
      dup2(out_, STDOUT_FILENO);
      dup2(err_, STDERR_FILENO);
      static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
      alarm(60);
      watched_folder[folder_.string().copy(watched_folder, sizeof watched_folder - 1)] = '\0';
      plan = fault;
      if (fault.spared >= 0) vxtest::fail_new(fault.spared, fault.lasting, fault.ways);
      const int code = static_cast<int>(vxcli::run(pointers));
      const int64_t failed = vxtest::stop_failing_new();
      *told_ = {.calls = calls, .failed = failed, .lost = vxhostAlive() - alive};
      if (__gcov_dump != nullptr) __gcov_dump();
      _exit(code);
    }
    close(ends[0]);
    close(ends[1]);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return {*told_, WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
            content(fmt::format("/proc/self/fd/{}", out_)), content(fmt::format("/proc/self/fd/{}", err_)),
            line.written != nullptr ? content(folder_ / line.written) : ""};
  }

  /// True when the fault changed nothing. Otherwise it must be told, and nothing may look finished that is not.
  bool expect_told(const Ending& ending, const Ending& plain, int code, std::string_view message) const {
    EXPECT_LE(ending.lost, plain.lost);  // a host that is open elsewhere may hold more from then on
    if (ending.told() == plain.told()) return true;
    EXPECT_EQ(ending.code, code);
    EXPECT_NE(ending.err.find(message), std::string::npos) << ending.err;
    EXPECT_TRUE(plain.out.starts_with(ending.out)) << ending.out;
    EXPECT_TRUE(ending.file == plain.file || ending.file == old_content) << ending.file;
    return false;
  }

  int64_t fail_each_allocation(const Line& line, bool lasting, Ways* ways) {
    const Ending plain = run(line);
    EXPECT_LE(plain.code, 2) << plain.err;
    int64_t failures = 0;
    for (Fault fault{.spared = 0, .lasting = lasting, .ways = ways};; ++failures) {
      const Ending ending = run(line, fault);
      SCOPED_TRACE(fmt::format("{}: allocation {}{}", line.words, ending.failed, lasting ? " and all after it" : ""));
      expect_told(ending, plain, 4, "memory is exhausted");
      if (ending.failed == 0 || HasFailure()) return failures;
      fault.spared = ending.failed;
    }
  }

  const vxtest::TemporaryFolder place_;
  const fs::path folder_ = place_.path();
  long files_ = 0;

 private:
  const int out_, err_;
  Counts* const told_;
  VXHost* host_ = nullptr;
};

TEST_F(Faults, EveryAllocationThatFailsIsTold) {
  const bool thorough = vxtest::is_long_run();
  int64_t failures = fail_each_allocation({"format date 2026-11-21 -l de_DE"}, false, shared<Ways>(thorough ? 14 : 2));
  open_host();
  for (const bool lasting : {false, true}) {
    Ways* const ways = shared<Ways>(thorough ? 14 : lasting ? 1 : 2);
    for (const Line& line : lines) failures += fail_each_allocation(line, lasting, ways);
  }
  RecordProperty("failures", std::to_string(failures));
  EXPECT_GT(failures, 1500);
}

TEST_F(Faults, EveryCallOnFilesThatFailsIsTold) {
  static constexpr struct {
    Call call;
    int error;
    bool harmless;
  } cases[] = {{Call::read, 0, true},       {Call::read, EINTR, true},  {Call::read, EIO, false},
               {Call::write, 0, true},      {Call::write, EINTR, true}, {Call::write, ENOSPC, false},
               {Call::write, EPIPE, false}, {Call::close, EIO, false},  {Call::rename, EACCES, false},
               {Call::tell, ENOSPC, true}};  // that nobody can be told changes nothing
  open_host();
  long failures = 0;
  for (const Line& line : lines) {
    const Ending plain = run(line);
    for (size_t most = 1; most <= 30; ++most) {  // the same bytes, however the input is cut
      EXPECT_TRUE(run(line, {.most = most}).told() == plain.told()) << line.words << " by " << most << " bytes";
    }
    for (const auto& [call, error, harmless] : cases) {
      Fault fault{.call = call, .error = error, .most = call == Call::tell ? 0 : line.most};
      const long made = run(line, fault).calls;
      EXPECT_GE(made, plain.code <= 1 && (call == Call::write || call == Call::close) ? 1 : 0) << line.words;
      long told = 0;
      for (fault.at = 1; fault.at <= made; ++fault.at, ++failures) {
        SCOPED_TRACE(fmt::format("{}: call {} of kind {}", line.words, fault.at, static_cast<int>(call)));
        Ending ending = run(line, fault);
        if (call == Call::tell) ending.err = plain.err;
        if (harmless) EXPECT_TRUE(ending.told() == plain.told());
        else if (!expect_told(ending, plain, 3, std::strerror(error))) ++told;
      }
      // Only that an input cannot be closed may be passed over.
      EXPECT_GE(told, harmless ? 0 : call == Call::close ? std::min(made, 1L) : made) << line.words;
    }
  }
  RecordProperty("failures", std::to_string(failures));
  EXPECT_GT(failures, 300);
}

}  // namespace
