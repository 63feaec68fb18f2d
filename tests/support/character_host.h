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
  VXNormaliser* normaliser = nullptr;  // what create_normaliser gives
  bool has_database = true;
  int loads = 0;
  std::vector<Question> asked;

  CharacterHost() {
    current() = this;
    data_.ops = &data_ops;
    handle_.ops = &handle_ops;
    handle_.characters = &data_;
    database_.ops = &database_ops;
    Exported_VXHandle = &handle_;
  }
  ~CharacterHost() {
    Exported_VXHandle = nullptr;
    current() = nullptr;
  }
  CharacterHost(const CharacterHost&) = delete;
  CharacterHost& operator=(const CharacterHost&) = delete;

 private:
  static CharacterHost*& current() {
    static CharacterHost* host = nullptr;
    return host;
  }
  static CharacterHost& asked_for(char what, uint32_t code_point, uint32_t argument) {
    current()->asked.push_back({what, code_point, argument});
    return *current();
  }
  static int32_t answer_class(VXUnicodeDatabase*, uint32_t c, uint32_t bits) {
    return asked_for('c', c, bits).test_class(c, bits);
  }
  static uint32_t answer_lower(VXCharData*, uint32_t c, uint32_t flag) { return asked_for('l', c, flag).lower(c); }
  static uint32_t answer_upper(VXCharData*, uint32_t c, uint32_t flag) { return asked_for('u', c, flag).upper(c); }
  static VXNormaliser* give_normaliser(VXCharData*) { return current()->normaliser; }
  static VXStatus keep(VXExtension*) { return 0; }
  static VXExtension* load(VXHandle*, const VXChar* name, int64_t length, uint64_t) {
    CharacterHost& host = *current();
    if (!host.has_database || std::u32string(name, name + length) != U"vxnlsudb") return nullptr;
    ++host.loads;
    return reinterpret_cast<VXExtension*>(&host.database_);
  }
  static constexpr VXUnicodeDatabaseOps database_ops = {keep, answer_class};
  static constexpr VXCharDataOps data_ops = {answer_lower, answer_upper, give_normaliser};
  static constexpr VXHandleOps handle_ops = {nullptr, nullptr, nullptr, nullptr, load};

  VXUnicodeDatabase database_{};
  VXCharData data_{};
  VXHandle handle_{};
};

}  // namespace vxtest

#endif
