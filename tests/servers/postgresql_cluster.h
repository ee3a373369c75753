#pragma once

#include <string>

namespace servers {

// A private PostgreSQL cluster in a temporary folder, reached through a socket there and through no network. It ends
// with this object, and with the process. A process of root's runs it as another user, which the server insists on.
// Raises std::runtime_error with what the server's programs say.
class PostgresqlCluster {
  public:
    PostgresqlCluster();
    ~PostgresqlCluster();
    PostgresqlCluster(const PostgresqlCluster&) = delete;
    PostgresqlCluster& operator=(const PostgresqlCluster&) = delete;

    // The folder of the socket; the port goes into the socket's name only.
    const std::string& Host() const { return folder_; }
    int Port() const { return 5432; }
    const char* User() const { return "vyn"; }
    const char* Database() const { return "postgres"; }
    // "Provider=PostgreSQL;..." for this cluster.
    std::string ConnectionString() const;

    // Ends the server at once, as a crash would, and starts it again on the same data.
    void Stop();
    void Start();

  private:
    std::string folder_;
    int server_ = -1;  // the process
    int output_ = -1;  // what it says
};

}  // namespace servers
