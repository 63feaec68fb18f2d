#include "extras/postgresql/session.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <new>
#include <string>
#include <unordered_map>

#include "cli/date_at_once.h"
#include "cli/refusal.h"
#include "cli/text.h"
#include "vxnls/vxhost.h"
#include "vxnls/vxnls.h"

namespace vxpg {

namespace {

using vxcli::in_quotes;

/// Leaves a function of this file; never the file itself.
struct Refused {
  Problem problem;
  std::string text;
};

template <class... Parts>
[[noreturn]] void refuse(Problem problem, fmt::format_string<Parts...> text, Parts&&... parts) {
  throw Refused{problem, fmt::format(text, std::forward<Parts>(parts)...)};
}

/// The forms of a date that have a name; any other is a pattern.
struct Form {
  std::string_view name;
  uint32_t reader_kind;
  int32_t style;  // negative: dates are not written so
};
constexpr Form forms[] = {{"any", 4, -1}, {"short", 0, 0}, {"medium", 1, 1}, {"long", 2, 2}};
constexpr Form own_pattern{"", 0, 0};

const Form& form_called(std::string_view name, bool writing) {
  for (const Form& form : forms) {
    if (form.name == name && !(writing && form.style < 0)) return form;
  }
  if (name.find('%') != std::string_view::npos) return own_pattern;
  refuse(Problem::form, "A form is {}\"short\", \"medium\", \"long\", or a pattern of directives such as \"%d.%m.%Y\"",
         writing ? "" : "\"any\", ");
}

struct Locale {
  VXLocale* shared = nullptr;
  VXLocale* own = nullptr;  // its main date pattern is whatever was asked for last
};

class Session {
 public:
  Session() {
    if (vxhostOpen(nullptr, &host_) != 0) {
      refuse(Problem::host, "The host of the locales cannot start: {}", vxhostOpenFailure());
    }
  }
  ~Session() { vxhostClose(host_); }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  VXHost* host() { return host_; }
  VXLocale* shared(std::string_view name) {
    Locale& locale = called(name);
    return locale.shared != nullptr ? locale.shared : locale.shared = make(0);
  }
  /// The locale with this main date pattern.
  VXLocale* with_pattern(std::string_view name, std::string_view pattern) {
    Locale& locale = called(name);
    constexpr uint32_t is_private = 1;
    if (locale.own == nullptr) locale.own = make(is_private);
    const auto units = vxcli::utf32(pattern);
    NLSName& entry = locale.own->localeData->datePattern;
    if (!units) refuse(Problem::form, "The pattern is not UTF-8");
    if (units->size() > std::size(entry.text)) {
      refuse(Problem::form, "A pattern has at most {} characters, not {}", std::size(entry.text), units->size());
    }
    std::copy(units->begin(), units->end(), entry.text);
    entry.length = static_cast<int64_t>(units->size());
    return locale.own;
  }
  void check(VXStatus status, std::string_view what) {
    if (status == 0) return;
    char text[256];
    vxhostStatusText(host_, status, text, sizeof text);
    refuse(status == VX_E_MEMORY ? Problem::memory : Problem::host, "{}: {}", what, text);
  }

  std::string remark;

 private:
  /// Names come from the values of a column, too: how many are remembered is bounded. Locales are bounded by CLDR.
  static constexpr size_t most_names = 1000;

  Locale& called(std::string_view name) {
    if (last_ != nullptr && name == last_name_) return last_->second;
    last_ = nullptr;  // until its name is kept, for which memory may be wanting
    const auto known = names_.find(std::string(name));
    Known* const found = known != names_.end() ? known->second : &resolve(std::string(name));
    if (known == names_.end()) {
      if (names_.size() >= most_names) names_.clear();
      names_.emplace(name, found);
    }
    last_name_ = name;
    last_ = found;
    return found->second;
  }

  using Known = std::pair<const std::string, Locale>;

  Known& resolve(const std::string& name) {
    char canonical[64];
    const VXStatus status = vxhostResolveLocale(host_, name.c_str(), canonical, sizeof canonical);
    if (status == VX_E_NOMATCH || status == VX_E_ROOM) {
      refuse(Problem::locale, "There is no locale {}", in_quotes(name));
    } else if (status == VX_W_SUBSTITUTE) {
      remark = fmt::format("there is no locale {}; {} stands in for it", in_quotes(name), canonical);
    } else {
      check(status, "The locale cannot be looked up");
    }
    return *locales_.try_emplace(canonical).first;
  }

  /// Dates alone and numbers have no zone.
  VXLocale* make(uint32_t flags) {
    VXLocale* locale = nullptr;
    check(vxhostLocale(host_, last_->first.c_str(), "UTC", flags, &locale), "The locale cannot be made");
    return locale;
  }

  VXHost* host_ = nullptr;
  std::unordered_map<std::string, Locale> locales_;  // by canonical name; entries never move
  std::unordered_map<std::string, Known*> names_;    // by the names that were asked for
  Known* last_ = nullptr;
  std::string last_name_;
};

/// Of the process, not of a thread: a server process has one. A plain pointer, so that nothing is destroyed at exit
/// after the server has closed it.
Session* session = nullptr;
std::string* words = nullptr;  // of the last problem
std::string* shown = nullptr;  // the last quoted value

/// What could not even be put into words.
std::string_view fixed_words;

std::string& kept(std::string*& slot) { return slot != nullptr ? *slot : *(slot = new std::string); }

/// Runs `body` with the session; turns whatever it throws into a problem.
template <class Body>
Problem guarded(Body body) noexcept {
  fixed_words = {};
  try {
    kept(words).clear();
    if (session == nullptr) session = new Session;
    return body(*session);
  } catch (Refused& refused) {
    kept(words).swap(refused.text);
    return refused.problem;
  } catch (const std::bad_alloc&) {
    fixed_words = "Memory is exhausted";
    return Problem::memory;
  } catch (...) {
    fixed_words = "The host of the locales failed";
    return Problem::host;
  }
}

/// Positions are told in characters, from 1: the text may have come in another encoding.
int64_t character_at(std::string_view text, int64_t byte) {
  int64_t count = 1;
  for (const char c : text.substr(0, static_cast<size_t>(byte))) {
    if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) ++count;
  }
  return count;
}

void check_length(std::string_view text) {
  if (text.size() > longest_text) {
    refuse(Problem::too_long, "It has {} bytes; at most {} are read", text.size(), longest_text);
  }
}

void check_rest(std::string_view text, int64_t consumed, std::string_view what) {
  const std::string_view rest = text.substr(static_cast<size_t>(consumed));
  if (!vxcli::without_blanks(rest).empty()) {
    refuse(Problem::not_understood, "At character {}: {} follows {}", character_at(text, consumed), in_quotes(rest),
           what);
  }
}

const uint8_t* bytes(std::string_view text) { return reinterpret_cast<const uint8_t*>(text.data()); }

std::array<uint8_t, 2048> written;

std::string_view written_text(int64_t length) {
  return {reinterpret_cast<const char*>(written.data()), static_cast<size_t>(length)};
}

}  // namespace

Problem parse_date(std::string_view text, std::string_view locale, std::string_view form_name, Date& date) noexcept {
  return guarded([&](Session& open) {
    check_length(text);
    const Form& form = form_called(form_name, false);
    VXLocale* const reader = &form == &own_pattern ? open.with_pattern(locale, form_name) : open.shared(locale);
    if (const auto read = vxcli::date_at_once(reader, text, form.reader_kind)) {
      date = {read->year, read->month, read->day};
      return Problem::none;
    }
    VXExplanation told;
    told.size = sizeof told;
    open.check(
        vxnlsExplain(reader, VX_EXPLAIN_DATE, form.reader_kind, bytes(text), static_cast<int64_t>(text.size()), &told),
        "Reading failed");
    if (told.status != 0) {
      const VXExplainRefusal& refusal = told.refusal;
      const bool bad_pattern =
          &form == &own_pattern && (refusal.reason == VX_REASON_DIRECTIVE || refusal.reason == VX_REASON_PATTERN_ENDED);
      const std::string reason = vxcli::describe_reason(refusal, text);
      if (bad_pattern) refuse(Problem::form, "Of the pattern {}: {}", in_quotes(form_name), reason);
      refuse(Problem::not_understood, "At character {}: {}", character_at(text, refusal.position), reason);
    }
    if (told.complete == 0) {
      refuse(&form == &own_pattern ? Problem::form : Problem::not_understood, "The pattern {} reads no full date",
             in_quotes(vxcli::utf8(told.match.candidate.pattern)));
    }
    const VXExplainFields& read = told.match.fields;
    if (told.day_exists == 0) {
      refuse(Problem::no_such_day, "There is no day {:04}-{:02}-{:02}", read.year, read.month, read.day);
    }
    check_rest(text, told.consumed, "what was read");
    date = {read.year, read.month, read.day};
    return Problem::none;
  });
}

Problem format_date(const Date& date, std::string_view locale, std::string_view form_name,
                    std::string_view& text) noexcept {
  return guarded([&](Session& open) {
    const Form& form = form_called(form_name, true);
    VXLocale* const writer = &form == &own_pattern ? open.with_pattern(locale, form_name) : open.shared(locale);
    constexpr int32_t first_year = 1582;
    constexpr int32_t last_year = 20000;
    if (date.year < first_year || date.year > last_year) {
      refuse(Problem::out_of_range, "Dates from {}-01-01 to {}-12-31 can be written", first_year, last_year);
    }
    int64_t length = 0;
    const VXStatus status = writer->ops.NLSDateFormatU(
        writer, static_cast<uint32_t>(date.month), static_cast<uint32_t>(date.day), static_cast<uint32_t>(date.year),
        form.style, written.data(), static_cast<int64_t>(written.size()), &length);
    if (status == VX_E_DIRECTIVE) {
      refuse(Problem::form, "The pattern {} holds a directive that writes no part of a date", in_quotes(form_name));
    }
    if (status == VX_E_RANGE) {
      refuse(Problem::no_such_day,
             "There is no day {:04}-{:02}-{:02} in this calendar, where years divisible by 4000 "
             "are common years",
             date.year, date.month, date.day);
    }
    open.check(status, "Writing failed");
    text = written_text(length);
    return Problem::none;
  });
}

Problem parse_number(std::string_view text, std::string_view locale, double& number) noexcept {
  return guarded([&](Session& open) {
    check_length(text);
    VXLocale* const reader = open.shared(locale);
    if (vxcli::without_blanks(text).empty()) refuse(Problem::not_understood, "There is no number");
    VXNumberReading reading;
    const VXStatus status = vxnlsExplainNumber(reader, bytes(text), static_cast<int64_t>(text.size()), VX_NUMBER_DOUBLE,
                                               NLS_READ_SPACE_SEPARATOR, &reading);
    if (status != reading.status) open.check(status, "Reading failed");
    if (reading.status != 0) {
      const bool out_of_range = reading.fault == VX_FAULT_OVERFLOW || reading.fault == VX_FAULT_UNDERFLOW ||
                                reading.fault == VX_FAULT_EXPONENT_RANGE;
      refuse(out_of_range ? Problem::out_of_range : Problem::not_understood, "At character {}: {}",
             character_at(text, reading.fault_offset), vxcli::describe_reason(reading, text));
    }
    check_rest(text, reading.consumed, "the number");
    number = reading.value.number;
    return std::isnan(number) ? Problem::missing : Problem::none;
  });
}

Problem format_number(double number, std::string_view locale, int32_t decimals, std::string_view& text) noexcept {
  return guarded([&](Session& open) {
    VXLocale* const writer = open.shared(locale);
    constexpr int32_t usual_digits = 15;  // that every double keeps
    constexpr int32_t most_decimals = NLS_BEST_DECIMALS - 1;
    if (decimals < general_form || decimals > most_decimals) {
      refuse(Problem::form, "A number of decimals lies between 0 and {}", most_decimals);
    }
    const bool general = decimals == general_form;
    const uint32_t flags = NLS_FORMAT_GROUP | (general ? 0 : NLS_FORMAT_PLAIN);
    const int32_t width = std::isinf(number) ? 4 : 0;  // an infinity needs a field
    int64_t length = 0;
    open.check(
        writer->ops.NLSDoubleFormatUWithExOpts(writer, width, general ? usual_digits : decimals, flags, written.data(),
                                               static_cast<int64_t>(written.size()), &length, nullptr, number),
        "Writing failed");
    text = written_text(length);
    return Problem::none;
  });
}

Problem versions(std::string_view& text) noexcept {
  return guarded([&](Session& open) {
    text = vxhostVersions(open.host());
    return Problem::none;
  });
}

std::string_view problem_text() noexcept {
  return words == nullptr || !fixed_words.empty() ? fixed_words : std::string_view(*words);
}

std::string_view quoted(std::string_view text) noexcept {
  try {
    return kept(shown) = in_quotes(text);
  } catch (...) {
    return "the value";
  }
}

std::string_view take_remark() noexcept {
  if (session == nullptr || session->remark.empty()) return {};
  try {
    kept(shown).clear();
    kept(shown).swap(session->remark);
    return *shown;
  } catch (...) {
    return {};
  }
}

int64_t close() noexcept {
  delete session;
  delete words;
  delete shown;
  session = nullptr;
  words = shown = nullptr;
  return vxhostAlive();
}

}  // namespace vxpg
