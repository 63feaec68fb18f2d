#include "kernel_strings/join.h"

#include <gtest/gtest.h>

#include <string>

#include "vxnls/strings.h"

namespace {

const VXChar ab[] = {'a', 'b'};
const VXChar cd[] = {'c', 'd'};

// What lies in the field afterwards; '?' is a unit that was not touched, '0' a NUL.
struct Field {
  std::string text() const {
    std::string shown;
    for (const VXChar unit : units) shown += unit == 0 ? '0' : static_cast<char>(unit);
    return shown.substr(0, shown.find_last_not_of('?') + 1);
  }
  std::basic_string<VXChar> units = std::basic_string<VXChar>(16, '?');
};

TEST(Join, RoomAndSeparator) {
  static constexpr struct {
    int64_t room;
    VXChar separator;
    const char* field;
    int64_t written;
  } cases[] = {
      {-11, ' ', "ab cd0", 5}, {4, ' ', "ab c", 4},    {5, ' ', "ab cd", 5},     {8, '/', "ab/cd   ", 5},
      {-5, '/', "ab/c0", 4},   {-6, '/', "ab/cd0", 5}, {3, '/', "ab/", 3},       {2, '/', "ab", 2},
      {0, '/', "", 0},         {-1, '/', "0", 0},      {6, 0xFFFF, "abcd  ", 4}, {-4, 0xFFFF, "abc0", 3},
      {1, 0xFFFF, "a", 1},     {-2, 0xFFFF, "a0", 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << "room " << c.room << " separator " << c.separator);
    Field field;
    EXPECT_EQ(vxzscat(field.units.data(), c.room, c.separator, 2, ab, int64_t{2}, cd, int64_t{2}), c.written);
    EXPECT_EQ(field.text(), c.field);
    Field typed;
    EXPECT_EQ(vxnls::join(typed.units.data(), c.room, c.separator, {{ab, 2}, {cd, 2}}), c.written);
    EXPECT_EQ(typed.units, field.units);
  }
}

TEST(Join, EmptyAndRefusedTexts) {
  static constexpr struct {
    const VXChar* text;
    int64_t length;
  } empty_ones[] = {{ab, 0}, {nullptr, 0}, {nullptr, 2}, {ab, -2}, {ab, INT64_MIN}};
  for (const auto& e : empty_ones) {
    Field field;
    EXPECT_EQ(vxzscat(field.units.data(), 6, '/', 3, e.text, e.length, ab, int64_t{2}, e.text, e.length), 4);
    EXPECT_EQ(field.text(), "/ab/  ");
  }
  Field field;
  EXPECT_EQ(vxzscat(field.units.data(), 3, '/', 0), 0);
  EXPECT_EQ(field.text(), "   ");
  EXPECT_EQ(vxzscat(field.units.data(), -3, '/', -1), 0);
  EXPECT_EQ(field.text(), "0  ");
  EXPECT_EQ(vxzscat(field.units.data(), INT64_MIN, '/', 1, ab, int64_t{2}), 2);
  EXPECT_EQ(field.text(), "ab0");
  EXPECT_EQ(vxzscat(nullptr, 3, '/', 1, ab, int64_t{2}), 0);
  EXPECT_EQ(vxzscat(nullptr, -3, '/', 1, ab, int64_t{2}), 0);
}

TEST(Join, FirstTextMayLieInTheField) {
  Field field;
  field.units[0] = 'x';
  EXPECT_EQ(vxzscat(field.units.data(), 5, '-', 2, field.units.data(), int64_t{1}, cd, int64_t{2}), 4);
  EXPECT_EQ(field.text(), "x-cd ");
}

}  // namespace
