// Texts that people really have, made into what the readers know, with a way back to the original bytes.
#ifndef VXNLS_CLI_COLUMN_CLEAN_H
#define VXNLS_CLI_COLUMN_CLEAN_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vxcli::column {

/// A cleaned text and, where it differs from the original, where each of its bytes came from.
///
///   blanks      no-break, narrow no-break, thin, figure and ideographic spaces, tabs   U+0020
///   left out    bidirectional marks and embeddings, zero width space and joiners, the byte order mark
///   minus       U+2212, hyphens and dashes U+2010 to U+2013                            "-"
///   digits      of any script                                                          "0" to "9"
///   full width  U+FF01 to U+FF5E                                                       their ASCII
///   others      U+2019 "'", U+066A "%", U+060C ","; U+066B and U+066C (Arabic decimal and thousands separator) stay
///   names       a full stop right behind a letter is left out, so that "Feb." and "Feb" are one
/// Blanks at both ends are left out. A text of plain ASCII without letters is only trimmed, and nothing is copied.
class Cleaned {
 public:
  /// `raw`: nothing is done at all. The result leads into `text` or into this object.
  void set(std::string_view text, bool raw);

  std::string_view text() const { return text_; }
  bool changed() const { return changed_; }  ///< beyond trimming
  /// The byte of the original that a byte of text() came from; of its size: where the trimmed original ends.
  size_t original(size_t at) const;

 private:
  void clean(std::string_view text);

  std::string_view text_;
  size_t begin_ = 0;  // trimmed at the start
  size_t end_ = 0;    // in the original
  bool changed_ = false;
  std::string scratch_;
  std::vector<uint32_t> from_;
};

}  // namespace vxcli::column

#endif
