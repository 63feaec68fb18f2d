// Which zone the system says it is in: TZ first, then /etc/localtime, then /etc/timezone.
#include <gtest/gtest.h>

#include "host/system_zone.h"
#include "tests/host/temporary_folder.h"

namespace {

std::string zone(const vxtest::TemporaryFolder& etc, const char* tz) {
  return vxhost::system_zone_name({tz, etc.file("localtime"), etc.file("timezone")}).value_or("none");
}

TEST(SystemZone, TzComesFirst) {
  const vxtest::TemporaryFolder etc;
  etc.link("/usr/share/zoneinfo/Asia/Tokyo", "localtime");
  static constexpr struct {
    const char* tz;
    const char* name;
  } cases[] = {
      {nullptr, "Asia/Tokyo"},
      {"Europe/Berlin", "Europe/Berlin"},
      {":Europe/Berlin", "Europe/Berlin"},
      {"", "UTC"},
      {":", "UTC"},
      {"posix/Europe/Berlin", "Europe/Berlin"},
      {"right/Europe/Berlin", "Europe/Berlin"},
      {"/usr/share/zoneinfo/posix/Europe/Berlin", "Europe/Berlin"},
      {"/opt/zoneinfo/Europe/Berlin", "Europe/Berlin"},
      {"/opt/berlin", "none"},
      {"CET-1CEST,M3.5.0,M10.5.0/3", "CET-1CEST,M3.5.0,M10.5.0/3"},  // no zone of that name will be found
  };
  for (const auto& c : cases) EXPECT_EQ(zone(etc, c.tz), c.name) << (c.tz != nullptr ? c.tz : "unset");
  EXPECT_EQ(zone(etc, etc.file("localtime").c_str()), "Asia/Tokyo");
}

TEST(SystemZone, LinksAndFiles) {
  {
    const vxtest::TemporaryFolder etc;
    EXPECT_EQ(zone(etc, nullptr), "UTC") << "neither file";
    etc.write("timezone", "Asia/Kolkata\n");
    EXPECT_EQ(zone(etc, nullptr), "Asia/Kolkata") << "only the name";
    etc.write("localtime", "TZif");
    EXPECT_EQ(zone(etc, nullptr), "Asia/Kolkata") << "a copied file beside the name";
    std::filesystem::remove(etc.file("timezone"));
    EXPECT_EQ(zone(etc, nullptr), "none") << "a copied file alone";
  }
  {
    const vxtest::TemporaryFolder etc;
    etc.link("middle", "localtime");
    etc.link("/usr/share/zoneinfo/Asia/Tokyo", "middle");
    EXPECT_EQ(zone(etc, nullptr), "Asia/Tokyo") << "through another link";
  }
}

}  // namespace
