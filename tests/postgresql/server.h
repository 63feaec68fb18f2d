// A PostgreSQL server for a test, and conversations with it.
#ifndef VXNLS_TESTS_POSTGRESQL_SERVER_H
#define VXNLS_TESTS_POSTGRESQL_SERVER_H

#include <libpq-fe.h>
#include <sys/types.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/host/temporary_folder.h"

namespace vxtest {

/// What a statement gave: rows of texts, or an error.
struct Reply {
  std::vector<std::vector<std::string>> rows;
  std::string state;  // SQLSTATE; empty when it went well
  std::string message, detail;

  /// All rows as lines, "|" between columns; the message of an error.
  std::string text() const;
};

class Connection {
 public:
  explicit Connection(const std::string& parameters);

  Reply run(const std::string& statement);
  /// Rows into a table: lines of tab-separated columns.
  Reply copy_in(const std::string& statement, const std::string& lines);
  /// Notices and warnings, as they came.
  const std::string& notices() const { return *notices_; }
  int process() const { return PQbackendPID(connection_.get()); }

 private:
  static Reply reply_of(PGresult* result);
  struct Finish {
    void operator()(PGconn* connection) const { PQfinish(connection); }
  };
  std::unique_ptr<std::string> notices_ = std::make_unique<std::string>();
  std::unique_ptr<PGconn, Finish> connection_;
};

/// Runs as a user without rights (a server refuses to run as root), listens on a socket in a temporary folder, and ends
/// with this process, however that ends. The extension and the library are copied there, as that user may not be
/// allowed to read where they were built.
class Server {
 public:
  /// Empty when there is a server to start; else why not.
  static std::string missing();

  Server();
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  /// Text that is sent and received is UTF-8, whatever the encoding of the database.
  Connection connect(const std::string& database = "postgres") const;
  std::string log() const;

 private:
  TemporaryFolder folder_;
  pid_t process_ = -1;
};

}  // namespace vxtest

#endif
