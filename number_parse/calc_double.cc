#include "number_parse/calc_double.h"

namespace vxnls {

const long double VXPOWTENTABLE[309] = {
    1e0L,   1e1L,   1e2L,   1e3L,   1e4L,   1e5L,   1e6L,   1e7L,   1e8L,   1e9L,   1e10L,  1e11L,  1e12L,  1e13L,
    1e14L,  1e15L,  1e16L,  1e17L,  1e18L,  1e19L,  1e20L,  1e21L,  1e22L,  1e23L,  1e24L,  1e25L,  1e26L,  1e27L,
    1e28L,  1e29L,  1e30L,  1e31L,  1e32L,  1e33L,  1e34L,  1e35L,  1e36L,  1e37L,  1e38L,  1e39L,  1e40L,  1e41L,
    1e42L,  1e43L,  1e44L,  1e45L,  1e46L,  1e47L,  1e48L,  1e49L,  1e50L,  1e51L,  1e52L,  1e53L,  1e54L,  1e55L,
    1e56L,  1e57L,  1e58L,  1e59L,  1e60L,  1e61L,  1e62L,  1e63L,  1e64L,  1e65L,  1e66L,  1e67L,  1e68L,  1e69L,
    1e70L,  1e71L,  1e72L,  1e73L,  1e74L,  1e75L,  1e76L,  1e77L,  1e78L,  1e79L,  1e80L,  1e81L,  1e82L,  1e83L,
    1e84L,  1e85L,  1e86L,  1e87L,  1e88L,  1e89L,  1e90L,  1e91L,  1e92L,  1e93L,  1e94L,  1e95L,  1e96L,  1e97L,
    1e98L,  1e99L,  1e100L, 1e101L, 1e102L, 1e103L, 1e104L, 1e105L, 1e106L, 1e107L, 1e108L, 1e109L, 1e110L, 1e111L,
    1e112L, 1e113L, 1e114L, 1e115L, 1e116L, 1e117L, 1e118L, 1e119L, 1e120L, 1e121L, 1e122L, 1e123L, 1e124L, 1e125L,
    1e126L, 1e127L, 1e128L, 1e129L, 1e130L, 1e131L, 1e132L, 1e133L, 1e134L, 1e135L, 1e136L, 1e137L, 1e138L, 1e139L,
    1e140L, 1e141L, 1e142L, 1e143L, 1e144L, 1e145L, 1e146L, 1e147L, 1e148L, 1e149L, 1e150L, 1e151L, 1e152L, 1e153L,
    1e154L, 1e155L, 1e156L, 1e157L, 1e158L, 1e159L, 1e160L, 1e161L, 1e162L, 1e163L, 1e164L, 1e165L, 1e166L, 1e167L,
    1e168L, 1e169L, 1e170L, 1e171L, 1e172L, 1e173L, 1e174L, 1e175L, 1e176L, 1e177L, 1e178L, 1e179L, 1e180L, 1e181L,
    1e182L, 1e183L, 1e184L, 1e185L, 1e186L, 1e187L, 1e188L, 1e189L, 1e190L, 1e191L, 1e192L, 1e193L, 1e194L, 1e195L,
    1e196L, 1e197L, 1e198L, 1e199L, 1e200L, 1e201L, 1e202L, 1e203L, 1e204L, 1e205L, 1e206L, 1e207L, 1e208L, 1e209L,
    1e210L, 1e211L, 1e212L, 1e213L, 1e214L, 1e215L, 1e216L, 1e217L, 1e218L, 1e219L, 1e220L, 1e221L, 1e222L, 1e223L,
    1e224L, 1e225L, 1e226L, 1e227L, 1e228L, 1e229L, 1e230L, 1e231L, 1e232L, 1e233L, 1e234L, 1e235L, 1e236L, 1e237L,
    1e238L, 1e239L, 1e240L, 1e241L, 1e242L, 1e243L, 1e244L, 1e245L, 1e246L, 1e247L, 1e248L, 1e249L, 1e250L, 1e251L,
    1e252L, 1e253L, 1e254L, 1e255L, 1e256L, 1e257L, 1e258L, 1e259L, 1e260L, 1e261L, 1e262L, 1e263L, 1e264L, 1e265L,
    1e266L, 1e267L, 1e268L, 1e269L, 1e270L, 1e271L, 1e272L, 1e273L, 1e274L, 1e275L, 1e276L, 1e277L, 1e278L, 1e279L,
    1e280L, 1e281L, 1e282L, 1e283L, 1e284L, 1e285L, 1e286L, 1e287L, 1e288L, 1e289L, 1e290L, 1e291L, 1e292L, 1e293L,
    1e294L, 1e295L, 1e296L, 1e297L, 1e298L, 1e299L, 1e300L, 1e301L, 1e302L, 1e303L, 1e304L, 1e305L, 1e306L, 1e307L,
    1e308L,
};
static_assert(!long_double_is_extended || sizeof VXPOWTENTABLE[0] == 16, "one power in 16 bytes");

VXStatus vxnlsCalcDouble(uint64_t high, uint64_t low, int32_t digits, int32_t exponent, int32_t negative,
                         double* value) {
  return calc_double<Extended>(high, low, digits, exponent, negative != 0, value);
}

}  // namespace vxnls
