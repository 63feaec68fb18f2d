// The identifiers of the system's tz database: which there are, and which of them are other names of others.
#ifndef VXNLS_HOST_ZONE_TABLE_H
#define VXNLS_HOST_ZONE_TABLE_H

#include <string>
#include <string_view>
#include <vector>

#include "host/text_map.h"

namespace vxhost {

/// Read from tzdata.zi and zone.tab of one folder. An identifier is canonical when it is a zone of its own or when
/// zone.tab gives it to a country ("Europe/San_Marino", though its rules are Rome's); every other one leads by the
/// database's links to the canonical one. Constant after its making.
class ZoneTable {
 public:
  struct Identifier {
    std::string name;
    const Identifier* canonical;  // itself when canonical
  };

  /// The folder of the tz database: TZDIR (not in a privileged process), or /usr/share/zoneinfo.
  static std::string system_folder();
  /// A table without files has "Etc/UTC" and "UTC", as every table.
  explicit ZoneTable(std::string folder);

  /// By name in any letter case, trailing blanks allowed; null when there is none.
  const Identifier* find(std::string_view name) const;
  /// All identifiers in byte order.
  const std::vector<const Identifier*>& identifiers() const { return in_order_; }

  const std::string& folder() const { return folder_; }
  /// "2026f"; empty when unknown.
  const std::string& version() const { return version_; }

 private:
  std::string folder_;
  std::string version_;
  TextMap<Identifier> by_folded_name_;
  std::vector<const Identifier*> in_order_;
};

}  // namespace vxhost

#endif
