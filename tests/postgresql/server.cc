#include "tests/postgresql/server.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <grp.h>
#include <pwd.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "tests/support/process.h"

namespace vxtest {

namespace {

namespace fs = std::filesystem;

/// Whom the server runs as: this user, or for root one that has no rights.
const passwd* server_user() {
  if (geteuid() != 0) return getpwuid(geteuid());
  const passwd* const user = getpwnam("postgres");
  return user != nullptr ? user : getpwnam("nobody");
}

void give_away(const fs::path& folder) {
  if (geteuid() != 0) return;
  const passwd* const user = server_user();
  const auto give = [&](const fs::path& path) {
    if (lchown(path.c_str(), user->pw_uid, user->pw_gid) != 0)
      throw std::runtime_error("cannot give away " + path.string());
  };
  give(folder);
  for (const auto& entry : fs::recursive_directory_iterator(folder)) give(entry.path());
}

/// Starts a program as the server's user; it gets a signal when this process ends.
pid_t start(std::vector<std::string> words, const fs::path& log, const std::string& library_folder) {
  const passwd* const user = server_user();
  std::vector<std::string> variables{"PATH=/usr/bin:/bin", "LC_ALL=C", "TZ=UTC", "LD_LIBRARY_PATH=" + library_folder};
  const auto pointers = [](std::vector<std::string>& texts) {
    std::vector<char*> result;
    for (std::string& text : texts) result.push_back(text.data());
    result.push_back(nullptr);
    return result;
  };
  const std::vector<char*> arguments = pointers(words);
  const std::vector<char*> environment = pointers(variables);
  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child != 0) return child;
  const int output = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
  dup2(output, STDOUT_FILENO);
  dup2(output, STDERR_FILENO);
  if (geteuid() == 0 && (setgroups(0, nullptr) != 0 || setgid(user->pw_gid) != 0 || setuid(user->pw_uid) != 0))
    _exit(126);
  prctl(PR_SET_PDEATHSIG, SIGQUIT);
  if (getppid() != parent) _exit(126);
  if (chdir("/") == 0) execve(arguments[0], arguments.data(), environment.data());
  _exit(127);
}

std::string content(const fs::path& file) {
  std::ostringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}

}  // namespace

std::string Reply::text() const {
  if (!state.empty()) return message;
  std::string lines;
  for (const auto& row : rows) {
    for (size_t i = 0; i < row.size(); ++i) lines += (i == 0 ? "" : "|") + row[i];
    lines += '\n';
  }
  if (lines.ends_with('\n')) lines.pop_back();
  return lines;
}

Connection::Connection(const std::string& parameters) : connection_(PQconnectdb(parameters.c_str())) {
  if (PQstatus(connection_.get()) != CONNECTION_OK) throw std::runtime_error(PQerrorMessage(connection_.get()));
  PQsetNoticeProcessor(
      connection_.get(), [](void* notices, const char* text) { *static_cast<std::string*>(notices) += text; },
      notices_.get());
}

Reply Connection::reply_of(PGresult* result) {
  const std::unique_ptr<PGresult, decltype(&PQclear)> owner(result, PQclear);
  const auto field = [&](int code) {
    const char* const text = PQresultErrorField(result, code);
    return std::string(text == nullptr ? "" : text);
  };
  Reply reply;
  const ExecStatusType status = PQresultStatus(result);
  if (status == PGRES_FATAL_ERROR || status == PGRES_BAD_RESPONSE) {
    reply.state = field(PG_DIAG_SQLSTATE);
    reply.message = field(PG_DIAG_MESSAGE_PRIMARY);
    reply.detail = field(PG_DIAG_MESSAGE_DETAIL);
    if (reply.state.empty()) reply.state = "lost";
  }
  for (int row = 0; row < PQntuples(result); ++row) {
    auto& columns = reply.rows.emplace_back();
    for (int column = 0; column < PQnfields(result); ++column) {
      columns.emplace_back(PQgetisnull(result, row, column) != 0 ? "null" : PQgetvalue(result, row, column));
    }
  }
  return reply;
}

Reply Connection::run(const std::string& statement) { return reply_of(PQexec(connection_.get(), statement.c_str())); }

Reply Connection::copy_in(const std::string& statement, const std::string& lines) {
  Reply reply = run(statement);
  if (!reply.state.empty()) return reply;
  PQputCopyData(connection_.get(), lines.data(), static_cast<int>(lines.size()));
  PQputCopyEnd(connection_.get(), nullptr);
  while (PGresult* result = PQgetResult(connection_.get())) reply = reply_of(result);
  return reply;
}

std::string Server::missing() {
  const fs::path initdb = fs::path(VX_PG_BINARIES) / "initdb";
  if (access(initdb.c_str(), X_OK) != 0) return "postgresql-15 is not installed: there is no " + initdb.string();
  return server_user() == nullptr ? "there is no user that the server could run as" : "";
}

Server::Server() {
  const fs::path installed = folder_.file("installed");
  const fs::path libraries = folder_.file("lib");
  const fs::path modules = installed.string() + VX_PG_MODULES;
  const fs::path extensions = installed.string() + VX_PG_SHARE + "/extension";
  fs::create_directories(modules);
  fs::create_directories(extensions);
  fs::copy(VX_LIBRARY_FOLDER, libraries, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
  fs::copy(VX_PG_MODULE, modules);
  for (const char* file : {"vxnlsloc.control", "vxnlsloc--1.0.sql"})
    fs::copy(fs::path(VX_PG_SOURCE) / file, extensions);
  give_away(folder_.path());

  const std::string binaries = VX_PG_BINARIES;
  const std::string data = folder_.file("data");
  int status = 0;
  waitpid(start({binaries + "/initdb", "-D", data, "-U", "postgres", "-A", "trust", "-E", "UTF8", "--locale=C",
                 "--no-sync", "--no-instructions"},
                folder_.file("log"), ""),
          &status, 0);
  if (status != 0) throw std::runtime_error("initdb failed:\n" + log());
  // Debian's server looks for extensions in extension_destdir first.
  std::vector<std::string> words{binaries + "/postgres", "-D", data};
  for (const std::string& setting : {std::string("listen_addresses="), "unix_socket_directories=" + folder_.path(),
                                     std::string("fsync=off"), "extension_destdir=" + installed.string(),
                                     std::string("max_parallel_workers=2"), std::string("shared_buffers=32MB")}) {
    words.emplace_back("-c");
    words.push_back(setting);
  }
  process_ = start(words, folder_.file("log"), libraries.string());
  const std::string place = "host=" + folder_.path() + " user=postgres dbname=postgres";
  while (PQping(place.c_str()) != PQPING_OK) {
    if (waitpid(process_, &status, WNOHANG) == process_) {
      process_ = -1;
      throw std::runtime_error("the server did not start:\n" + log());
    }
    usleep(20'000);
  }
}

Server::~Server() {
  if (process_ > 0) {
    kill(process_, SIGINT);
    waitpid(process_, nullptr, 0);
  }
}

Connection Server::connect(const std::string& database) const {
  return Connection("host=" + folder_.path() + " user=postgres client_encoding=UTF8 dbname=" + database);
}

std::string Server::log() const { return content(folder_.file("log")); }

}  // namespace vxtest
