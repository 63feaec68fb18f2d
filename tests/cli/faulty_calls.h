// Calls of this program on files that can be told to fail: those on standard input, output and error and on the files
// of a folder.
#ifndef VXNLS_TESTS_CLI_FAULTY_CALLS_H
#define VXNLS_TESTS_CLI_FAULTY_CALLS_H

#include <string>

namespace vxtest {

enum class Call {
  none,
  read,    // of standard input and of files
  write,   // to standard output and to files
  tell,    // to standard error
  close,   // all of them
  rename,  // of files
};

struct FaultyCalls {
  Call call = Call::none;
  long at = 0;      // which of these calls, from 1; 0: none
  int error = 0;    // its errno; 0: a single byte is taken or given
  size_t most = 0;  // bytes that any read gives at most; then no input is ever ready, so that each read is waited for
};

/// From now on. `folder` is its path.
void make_faulty(const FaultyCalls& calls, const std::string& folder);
/// How many of these calls there were.
long calls_made();

}  // namespace vxtest

#endif
