// The extension "vxemsg": what every status means, in English.
#include <algorithm>
#include <iterator>
#include <new>

#include "host/extension.h"
#include "host/message_ops.h"

namespace {

struct Row {
  VXStatus status;
  const char* text;
};

// In order of status; one text serves all callers that give the status.
constexpr Row rows[] = {
    {0, "done"},
    {VX_E_MEMORY, "memory is exhausted, or a service of the host cannot be had"},
    {VX_E_DIGITS, "the number has more digits than the room given"},
    {VX_E_DIRECTIVE, "the pattern holds an unknown directive, or the digits outgrow the work area"},
    {VX_E_ROOM, "the room for the output is too small, or what is needed was not found"},
    {VX_E_SEQUENCE, "the text holds a byte sequence that is not valid"},
    {VX_E_NOMATCH, "the text does not match any form that is accepted here"},
    {VX_E_MISSING, "the value is missing"},
    {VX_E_RANGE, "the value is outside the range that is accepted here"},
    {VX_E_TRUNCATED, "the result does not fit and was cut, or a fraction was dropped"},
    {VX_W_FILL, "the locale's data was filled with exceptions that are accepted"},
    {VX_E_NOTNUMBER, "the text is not a number"},
    {VX_E_OVERFLOW, "the number is too large for its type"},
    {VX_E_UNDERFLOW, "the number is too small for its type"},
    {VX_E_INCOMPLETE, "the text ends inside a sequence"},
    {VX_E_WIDTH, "the width is not one that is accepted here"},
    {VX_W_PRECISION, "fewer decimals, or an exponent, are shown so that the number fits"},
    {VX_E_KIND, "the kind asked for does not exist"},
    {VX_E_LENGTH, "a length is negative"},
    {VX_W_SUBSTITUTE, "another locale stands in for the one that was asked for"},
    {VX_E_NULL, "an argument that is needed is null"},
    {VX_E_MISSCHAR, "the character for missing values is NUL"},
    {VX_E_ZONE, "no time zone has this name"},
    {VX_E_GROUPING, "there is no room for the group separators"},
    {VX_E_SPLIT, "the date cannot be split into year, month and day"},
};

constexpr bool less(const Row& a, const Row& b) { return a.status < b.status; }
static_assert(std::is_sorted(std::begin(rows), std::end(rows), less));

struct Messages final : VXExtension {
  explicit Messages(VXHostExtensionOwner* its_owner);
  VXHostExtensionOwner* const owner;
};

VXStatus destroy(VXExtension* self) {
  auto* const messages = static_cast<Messages*>(self);
  VXHostExtensionOwner* const owner = messages->owner;
  delete messages;
  owner->closed(owner);
  return 0;
}

const char* text(VXExtension*, VXStatus status) {
  const Row* const at = std::lower_bound(std::begin(rows), std::end(rows), Row{status, nullptr}, less);
  return at != std::end(rows) && at->status == status ? at->text : nullptr;
}

constexpr VXHostMessageOps operations = {{destroy}, text};

Messages::Messages(VXHostExtensionOwner* its_owner) : VXExtension{&operations.base}, owner(its_owner) {}

VXExtension* open(VXHostExtensionOwner* owner) { return new (std::nothrow) Messages(owner); }

}  // namespace

VXHOST_EXTENSION("vxemsg", open);
