// A kernel handle that offers character data alone, for tests of case, classes and normalising. It answers by functions
// that the test sets, and notes what it was asked.
#ifndef VXNLS_TESTS_SUPPORT_CHARACTER_HOST_H
#define VXNLS_TESTS_SUPPORT_CHARACTER_HOST_H

#include <functional>
#include <string>
#include <vector>

#include "vxnls/host.h"
#include "vxnls/module.h"

namespace vxtest {

/// Stored as Exported_VXHandle for as long as it lives. Not for several threads.
class CharacterHost {
 public:
  struct Question {
    char what;  // 'l' lower, 'u' upper, 'c' class
    uint32_t code_point;
    uint32_t argument;  // flag, class bits
    bool operator==(const Question&) const = default;
  };

  std::function<uint32_t(uint32_t)> lower = [](uint32_t c) { return c; };
  std::function<uint32_t(uint32_t)> upper = [](uint32_t c) { return c; };
  std::function<int32_t(uint32_t, uint32_t)> test_class = [](uint32_t, uint32_t) { return 0; };
  bool has_database = true;
  int loads = 0;
  std::vector<Question> asked;

  CharacterHost() {
    static constexpr VXUnicodeDatabaseOps database_ops = {
        [](VXExtension*) -> VXStatus { return 0; },
        [](VXUnicodeDatabase*, uint32_t c, uint32_t bits) { return asked_for('c', c, bits).test_class(c, bits); }};
    static constexpr VXCharDataOps data_ops = {
        [](VXCharData*, uint32_t c, uint32_t flag) { return asked_for('l', c, flag).lower(c); },
        [](VXCharData*, uint32_t c, uint32_t flag) { return asked_for('u', c, flag).upper(c); },
        [](VXCharData*) -> VXNormaliser* { return nullptr; }};
    static constexpr VXHandleOps handle_ops = {
        nullptr, nullptr, nullptr, nullptr, [](VXHandle*, const VXChar* name, int64_t length, uint64_t) {
          const bool loads = current->has_database && std::u32string(name, name + length) == U"vxnlsudb";
          current->loads += loads;
          return loads ? reinterpret_cast<VXExtension*>(&current->database_) : nullptr;
        }};
    data_.ops = &data_ops;
    handle_.ops = &handle_ops;
    handle_.characters = &data_;
    database_.ops = &database_ops;
    current = this;
    Exported_VXHandle = &handle_;
  }
  ~CharacterHost() {
    Exported_VXHandle = nullptr;
    current = nullptr;
  }
  CharacterHost(const CharacterHost&) = delete;
  CharacterHost& operator=(const CharacterHost&) = delete;

 private:
  static CharacterHost& asked_for(char what, uint32_t code_point, uint32_t argument) {
    current->asked.push_back({what, code_point, argument});
    return *current;
  }

  static inline CharacterHost* current = nullptr;
  VXUnicodeDatabase database_{};
  VXCharData data_{};
  VXHandle handle_{};
};

}  // namespace vxtest

#endif
