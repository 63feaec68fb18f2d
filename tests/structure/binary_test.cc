// The library as a binary: what it exports, what it needs, how it is hardened, and that the table of a locale leads to
// the very functions that a program finds by name.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <link.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/failing_host.h"

namespace {

using Names = std::set<std::string>;

std::vector<std::string> output_of(const std::string& command) {
  std::vector<std::string> lines;
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), &pclose);
  char line[4096];
  while (pipe != nullptr && fgets(line, sizeof line, pipe.get()) != nullptr) {
    lines.emplace_back(line, strcspn(line, "\n"));
  }
  EXPECT_FALSE(lines.empty()) << command;
  return lines;
}

Names names_in(const char* file) {
  Names names;
  std::ifstream in(file);
  for (std::string line; std::getline(in, line);) {
    if (!line.empty() && line[0] != '#') names.insert(line);
  }
  EXPECT_FALSE(names.empty()) << file;
  return names;
}

/// The dynamic symbols that nm lists, without their versions; the version itself (type A) is none.
Names symbols(const std::string& option, const char* file = VX_LIBRARY) {
  Names names;
  for (const std::string& line : output_of(std::string(VX_NM " -P -D ") + option + " '" + file + '\'')) {
    std::istringstream words(line);
    std::string name, type;
    words >> name >> type;
    if (type != "A") names.insert(name.substr(0, name.find('@')));
  }
  return names;
}

Names without(const Names& names, const Names& others) {
  Names rest;
  std::set_difference(names.begin(), names.end(), others.begin(), others.end(), std::inserter(rest, rest.end()));
  return rest;
}

std::vector<std::string> lines_with(const std::vector<std::string>& lines, const std::string& text) {
  std::vector<std::string> found;
  for (const std::string& line : lines) {
    if (line.find(text) != std::string::npos) found.push_back(line);
  }
  return found;
}

TEST(Binary, ExportsTheListAndNothingElse) {
  const Names listed = names_in(VX_EXPORTS);
  EXPECT_EQ(symbols("--defined-only"), listed);
  // The list decides what the linker lets out; this finds a function that is declared public and was not put on it.
  for (const std::string& line : output_of("xargs " VX_READELF " -sW <'" VX_OBJECTS "'")) {
    // number: value size type binding visibility section name
    std::istringstream words(line);
    std::string number, value, size, type, binding, visibility, section, name;
    words >> number >> value >> size >> type >> binding >> visibility >> section >> name;
    const bool defined = (binding == "GLOBAL" || binding == "WEAK") && section != "UND";
    const bool of_cxx = name.starts_with("_Z") || name.starts_with("DW.");
    EXPECT_TRUE(!defined || visibility != "DEFAULT" || of_cxx || listed.contains(name)) << name << " is not listed";
  }
}

TEST(Binary, NeedsTheCLibraryAloneAndRunsNoCodeWhenItIsLoaded) {
  if (!VX_PLAIN_BUILD) GTEST_SKIP() << "this build is instrumented";
  const auto dynamic = output_of(VX_READELF " -dW " VX_LIBRARY);
  for (const std::string& line : lines_with(dynamic, "(NEEDED)")) {
    const std::string name = line.substr(line.find('['));
    EXPECT_TRUE(name == "[libc.so.6]" || name == "[libm.so.6]" || name.starts_with("[ld-linux")) << name;
  }
  // One address each: what the compiler's own start files bring along.
  for (const char* array : {"INIT_ARRAYSZ", "FINI_ARRAYSZ"}) {
    for (const std::string& line : lines_with(dynamic, array)) {
      EXPECT_NE(line.find(" 8 (bytes)"), std::string::npos) << line;
    }
  }
  Names listed, of_other_builds;
  for (const std::string& line : names_in(VX_UNDEFINED)) {
    if (line[0] == '?') of_other_builds.insert(line.substr(2));
    else listed.insert(line);
  }
  const Names needed = symbols("--undefined-only");
  EXPECT_EQ(without(without(needed, listed), of_other_builds), Names{}) << "needed, but not listed";
  if (VX_REFERENCE_BUILD) {
    EXPECT_EQ(without(listed, needed), Names{}) << "listed, but not needed";
  }
}

/// What is given away: which of them take what from the C library's checks is a matter of what they do.
constexpr struct {
  const char* file;
  bool checks_stack, calls_checked_functions;
} shipped[] = {
    {VX_LIBRARY, true, false},  // every length that it copies is its own, which no checked function knows better
    {VX_HOST, true, true},
    {VX_EXTENSIONS "/vxnlsldb.so", true, false},
    {VX_EXTENSIONS "/vxnlsudb.so", false, false},
    {VX_EXTENSIONS "/vxemsg.so", false, false},
    {VX_COMMAND, true, true},
};

TEST(Binary, IsHardened) {
  for (const auto& binary : shipped) {
    SCOPED_TRACE(binary.file);
    const std::string file = std::string(" '") + binary.file + '\'';
    const auto segments = output_of(VX_READELF " -lW" + file);
    EXPECT_EQ(lines_with(segments, "GNU_RELRO").size(), 1u);
    EXPECT_EQ(lines_with(lines_with(segments, "GNU_STACK"), " RW ").size(), 1u);
    EXPECT_EQ(lines_with(segments, "Elf file type is DYN").size(), 1u) << "at a fixed address";
    EXPECT_TRUE(lines_with(segments, " RWE ").empty()) << "writable and executable";
    const auto dynamic = output_of(VX_READELF " -dW" + file);
    EXPECT_FALSE(lines_with(dynamic, "NOW").empty()) << "symbols are bound late";
    EXPECT_TRUE(lines_with(dynamic, "TEXTREL").empty()) << "code is relocated";
    EXPECT_TRUE(lines_with(dynamic, "RPATH").empty());
    for (const std::string& line : lines_with(dynamic, "RUNPATH")) {
      EXPECT_NE(line.find("[$ORIGIN/"), std::string::npos) << line;
    }
    if (!VX_REFERENCE_BUILD) continue;
    const Names needed = symbols("--undefined-only", binary.file);
    EXPECT_EQ(needed.contains("__stack_chk_fail"), binary.checks_stack);
    EXPECT_EQ(std::any_of(needed.begin(), needed.end(), [](const std::string& name) { return name.ends_with("_chk"); }),
              binary.calls_checked_functions);
  }
}

// The marks that the compiler leaves: in the objects, because the C library's own start files have none, and at the
// head of every function that may be called through a pointer.
TEST(Binary, ChecksJumpsAndStackPages) {
#ifndef __x86_64__
  GTEST_SKIP() << "other marks on this processor";
#endif
  if (!VX_PLAIN_BUILD) GTEST_SKIP() << "this build is instrumented";
  const auto notes = output_of("xargs " VX_READELF " -nW <'" VX_SHIPPED_OBJECTS "'");
  EXPECT_EQ(lines_with(notes, "IBT, SHSTK").size(), names_in(VX_SHIPPED_OBJECTS).size());
  void* const library = dlopen(VX_LIBRARY, RTLD_NOW | RTLD_NOLOAD);
  ASSERT_NE(library, nullptr) << dlerror();
  static constexpr unsigned char endbr64[] = {0xf3, 0x0f, 0x1e, 0xfa};
  for (const std::string& name : names_in(VX_EXPORTS)) {
    const void* const entry = dlsym(library, name.c_str());
    Dl_info info;
    ElfW(Sym)* symbol = nullptr;
    ASSERT_NE(dladdr1(entry, &info, reinterpret_cast<void**>(&symbol), RTLD_DL_SYMENT), 0) << name;
    if (ELF64_ST_TYPE(symbol->st_info) != STT_FUNC) continue;
    EXPECT_EQ(std::memcmp(entry, endbr64, sizeof endbr64), 0) << name;
  }
  dlclose(library);
  // A frame of more than a page is entered page by page.
  if (!VX_REFERENCE_BUILD) return;
  EXPECT_FALSE(lines_with(output_of(VX_OBJDUMP " -d " VX_LIBRARY), "orq    $0x0,").empty());
}

/// The order that hosts were built against, written down apart from the header that the library is built from.
constexpr const char* slots =
    "NLSDateFormat NLSTimeFormat NLSDoubleFormat NLSIntfastFormat NLSIntmaxFormat NLSUintfastFormat NLSUintmaxFormat "
    "NLSPointerFormat NLSCurrencyFormat NLSPercentFormat NLSBufToDatetime NLSBufToDate NLSBufToTime NLSBufToDouble "
    "NLSBufToIntfast NLSBufToIntmax NLSBufToUintfast NLSBufToUintmax NLSKeyCreate NLSKKOrderCompare NLSKSOrderCompare "
    "NLSSSOrderCompare NLSDatetimeFormat NLSGetLocaleData NLSLocaleToLocName NLSIntFormat NLSUIntFormat NLSBufToInt "
    "NLSBufToUInt NLSLongFormat NLSULongFormat NLSBufToLong NLSBufToULong NLSDoubleFormatWithExOpts NLSBufToDoubleU "
    "NLSBufToDoubleA NLSBufToDoubleE NLSDoubleFormatUWithExOpts NLSIntfastFormatU NLSIntmaxFormatU NLSUintfastFormatU "
    "NLSUintmaxFormatU NLSBufToIntfastU NLSBufToIntmaxU NLSBufToUintfastU NLSBufToUintmaxU NLSIntFormatU "
    "NLSUIntFormatU NLSBufToIntU NLSBufToUIntU NLSLongFormatU NLSULongFormatU NLSBufToLongU NLSBufToULongU "
    "NLSBufToDoubleWithOpts NLSBufToDoubleUWithOpts NLSLocaleCreateTheDupTrack NLSSetTimezoneId NLSDatetimeFormatU "
    "NLSDateFormatU NLSTimeFormatU NLSBufToDatetimeU NLSBufToDateU NLSBufToTimeU";

TEST(Binary, NamesAndSlotsLeadToTheSameFunctions) {
  void* const library = dlopen(VX_LIBRARY, RTLD_NOW | RTLD_NOLOAD);
  ASSERT_NE(library, nullptr) << dlerror();
  vxtest::FailingHost host;
  ASSERT_TRUE(host.load_module());
  VXLocale* const locale = host.create(U"en_US", nullptr);
  ASSERT_NE(locale, nullptr);
  const auto* const bytes = reinterpret_cast<const uint8_t*>(locale);
  std::istringstream names(slots);
  size_t count = 0;
  for (std::string name; names >> name; ++count) {
    void* slot = nullptr;
    std::memcpy(&slot, bytes + 296 + 8 * count, sizeof slot);
    EXPECT_NE(slot, nullptr);
    EXPECT_EQ(slot, dlsym(library, name.c_str())) << "slot " << count + 1 << ", " << name;
  }
  EXPECT_EQ(count, 64u);
  NLSModule* const module = host.module();
  EXPECT_EQ(reinterpret_cast<void*>(module->localeCreate), dlsym(library, "NLSLocaleCreate"));
  EXPECT_EQ(reinterpret_cast<void*>(module->localeDestroyCallback), dlsym(library, "NLSLocaleDestroyCallback"));
  EXPECT_EQ(reinterpret_cast<void*>(module->realDestroy), dlsym(library, "NLSLOCRealDestroy"));
  EXPECT_EQ(reinterpret_cast<void*>(locale->destroy), dlsym(library, "NLSLocaleDestroy"));
  host.destroy_private(locale);
  dlclose(library);
}

}  // namespace
