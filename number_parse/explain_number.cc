// The readers' own records of a text, handed out.
#include "vxnls/explain_number.h"

#include "number_parse/integer_text.h"
#include "number_parse/read_double.h"

namespace vxnls {

namespace {

/// Faults are marked at one unit; a reader of the explanation wants the whole character.
void show(const NumberFault& fault, const uint8_t* text, int64_t length, VXNumberReading* reading) {
  reading->fault = fault.reason;
  reading->fault_offset = fault.from;
  reading->fault_length = fault.to - fault.from;
  if (reading->fault_length == 1)
    reading->fault_length = Utf8Text::decode(text + fault.from, length - fault.from).consumed;
}

void explain_double(const Conventions& conventions, const uint8_t* text, int64_t length, VXNumberReading* reading) {
  const Marks<Utf8Code> marks(conventions);
  const NumberText number = NumberRecogniser<Utf8Code>(marks, text, length).recognise();
  reading->consumed = number.consumed;
  reading->status = evaluate(number, &reading->value.number);
  NumberFault fault = number.fault;
  if (reading->status == VX_E_OVERFLOW) fault = {VX_FAULT_OVERFLOW, number.begin, number.end};
  if (reading->status == VX_E_UNDERFLOW) fault = {VX_FAULT_UNDERFLOW, number.begin, number.end};
  if (reading->status == 0) fault = {VX_FAULT_NONE, number.consumed, number.consumed};
  show(fault, text, length, reading);
}

template <class Integer>
void explain_integer(const Conventions& conventions, const uint8_t* text, int64_t length, uint32_t flags,
                     VXNumberReading* reading) {
  const Marks<Utf8Code> marks(conventions);
  const auto integer = IntegerRecogniser<Integer, Utf8Code>(marks, flags, text, length).recognise();
  reading->consumed = integer.consumed;
  reading->status = status_of(integer.fault.reason);
  if constexpr (std::is_signed_v<Integer>) reading->value.signed_integer = integer.value();
  else reading->value.unsigned_integer = integer.value();
  NumberFault fault = integer.fault;
  if (reading->status == 0) fault = {VX_FAULT_NONE, integer.consumed, integer.consumed};
  show(fault, text, length, reading);
}

}  // namespace

}  // namespace vxnls

VXStatus vxnlsExplainNumber(VXLocale* locale, const uint8_t* text, int64_t length, uint32_t kind, uint32_t flags,
                            VXNumberReading* reading) {
  using namespace vxnls;
  if (reading == nullptr || (text == nullptr && length > 0)) return VX_E_NULL;
  if (length < 0) return VX_E_LENGTH;
  const Conventions conventions = conventions_of(locale, flags);
  switch (kind) {
    case VX_NUMBER_DOUBLE: explain_double(conventions, text, length, reading); break;
    case VX_NUMBER_INT32: explain_integer<int32_t>(conventions, text, length, flags, reading); break;
    case VX_NUMBER_UINT32: explain_integer<uint32_t>(conventions, text, length, flags, reading); break;
    case VX_NUMBER_INT64: explain_integer<int64_t>(conventions, text, length, flags, reading); break;
    case VX_NUMBER_UINT64: explain_integer<uint64_t>(conventions, text, length, flags, reading); break;
    default: return VX_E_KIND;
  }
  return reading->status;
}
