#pragma once

#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace faults {

// A relay between clients and a database server's socket, which cuts, holds or spoils what goes through it. Nothing of
// it depends on time: it does what it is told at the request that it is told.
class Relay {
  public:
    enum class Fault {
        CutBeforeRequest,  // the server never hears of it
        CutAfterRequest,   // the server does it, and its answer is lost
        CutInAnswer,       // after some bytes of the answer
        Hold,              // the server does it, nothing comes back; who comes anew, is not answered either
        HoldInAnswer,      // the same after some bytes
        Garbage,           // other bytes in place of the answer
        GarbageInAnswer,   // behind some bytes of it
    };

    // The server's socket is a file in that folder, by the name that the protocol's clients look for; so is the
    // relay's.
    explicit Relay(const std::string& serverFolder);
    ~Relay();
    Relay(const Relay&) = delete;
    Relay& operator=(const Relay&) = delete;

    const std::string& Folder() const { return folder_; }
    // The nth request from now on (1: the next) meets the fault.
    void FailAt(int request, Fault fault, size_t bytes = 0);
    // Passes on what was held, and all that follows.
    void Mend();
    bool Failed();
    // Every connection ends now; those that come are served.
    void CutAll();
    // How many clients are connected. Waits until those that left are seen to have.
    int Connections();

  private:
    struct Pair {
        int client = -1, server = -1;
        bool requested = false;  // the last that moved came from the client
        bool started = false;    // beyond the greeting
        bool dropping = false;   // the answer is dropped, and the connection with it
        bool spoiling = false;
        bool holding = false;
        bool watched = false;  // its answer is the one that fails
        size_t passed = 0;
        std::string held;
    };
    void Run();
    void AcceptOne();
    bool FromClient(Pair& pair);
    bool FromServer(Pair& pair);
    static void Close(Pair& pair);
    void Wake();

    std::string folder_;
    std::string server_;
    int listening_ = -1;
    int wake_[2] = {-1, -1};
    std::mutex mutex_;
    std::vector<Pair> pairs_;
    bool ending_ = false;
    bool frozen_ = false;
    bool failed_ = false;
    int requestsLeft_ = 0;  // until the fault; 0: none
    Fault fault_ = Fault::CutBeforeRequest;
    size_t bytes_ = 0;
    std::thread thread_;
};

}  // namespace faults
