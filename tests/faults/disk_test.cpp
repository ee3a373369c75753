#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <filesystem>

#include "faults/embedded_file.h"
#include "faults/failing_disk.h"

using namespace faults;
using Kind = FailingDisk::Kind;
using Duration = FailingDisk::Duration;

// The disk under the embedded engine fills or fails at each of the operations of a change, one after the other.
namespace {

struct Failure {
    const char* name;
    Kind kind;
    Duration duration;
    bool throughDriver = false;
};

void PrintTo(const Failure& failure, std::ostream* stream) { *stream << failure.name; }

class Disk : public EmbeddedFile, public testing::WithParamInterface<Failure> {
  protected:
    // Arms the disk for operation after operation, until a step needs no more of them; gives how many there were.
    int AtEachOperation(const std::function<bool(int operation)>& failed) {
        constexpr int kMostOperations = 1000;
        int operation = 1;
        while (operation < kMostOperations && failed(operation)) ++operation;
        EXPECT_LT(operation, kMostOperations);
        return operation - 1;
    }
    AnsiString Here() const { return GetParam().throughDriver ? ThroughDriver() : Where(); }
    void Break(int operation) { disk.FailAt(operation, GetParam().kind, GetParam().duration); }
    static void ExpectSentence(const AnsiString& message) {
        const bool full = message.find("there is no room left on the disk") != AnsiString::npos;
        const bool failing = message.find("the disk could not be read or written") != AnsiString::npos;
        EXPECT_TRUE(full || failing) << message;
    }

    FailingDisk disk;
};

}  // namespace

TEST_P(Disk, APostIsWholeOrNotThereAndCanBeRepeated) {
    const int operations = AtEachOperation([&](int operation) {
        SCOPED_TRACE(operation);
        Make();
        User user(Here());
        user.Type("typed");
        Break(operation);
        const AnsiString message = user.Post();
        disk.Mend();
        if (message == "no error") {
            EXPECT_EQ(Stored("SELECT nota FROM clients WHERE id = 1"), "typed");
            EXPECT_EQ(Integrity(), "ok");
            return disk.Failed();
        }
        ExpectSentence(message);
        user.ExpectTyped("typed");
        EXPECT_FALSE(user.connection.InTransaction());
        EXPECT_EQ(Integrity(), "ok");
        EXPECT_EQ(Stored("SELECT nota FROM clients WHERE id = 1"), "nota 1");
        EXPECT_EQ(user.Post(), "no error");
        EXPECT_EQ(Stored("SELECT nota FROM clients WHERE id = 1"), "typed");
        EXPECT_EQ(Integrity(), "ok");
        return true;
    });
    if (GetParam().kind != Kind::ReadError) EXPECT_GT(operations, 0);
}

TEST_P(Disk, AnInsertedRecordIsWholeOrNotThereAndCanBeRepeated) {
    AtEachOperation([&](int operation) {
        SCOPED_TRACE(operation);
        Make();
        User user(Here());
        user.TypeNew(7, std::string(20000, 'x'));
        Break(operation);
        const AnsiString message = user.Post();
        disk.Mend();
        if (message != "no error") {
            ExpectSentence(message);
            user.ExpectTyped(std::string(20000, 'x'), dsInsert);
            EXPECT_EQ(Integrity(), "ok");
            EXPECT_EQ(Stored("SELECT count(*) FROM clients"), "3");
            EXPECT_EQ(user.Post(), "no error");
        }
        EXPECT_EQ(Stored("SELECT count(*) || ' ' || max(length(nota)) FROM clients"), "4 20000");
        EXPECT_EQ(Integrity(), "ok");
        return message != "no error" || disk.Failed();
    });
}

TEST_P(Disk, ATransactionIsWholeOrNotThereAndSaysSo) {
    AtEachOperation([&](int operation) {
        SCOPED_TRACE(operation);
        Make();
        User user(Here());
        Break(operation);
        bool taken = false;
        const AnsiString message = MessageOf([&] {
            user.connection.BeginTrans();
            taken = true;
            // More than fits into the engine's memory for pages, so that the disk is needed before the end.
            user.connection.Execute("PRAGMA cache_size = 5");
            for (int i = 0; i < 20; ++i)
                user.connection.Execute("INSERT INTO clients VALUES (" + std::to_string(100 + i) + ", 'x', '" +
                                        std::string(4000, 'y') + "')");
            user.connection.Execute("UPDATE clients SET nota = 'changed' WHERE id = 1");
            user.connection.CommitTrans();
        });
        const bool gone = taken && !user.connection.InTransaction();
        disk.Mend();
        if (message != "no error") {
            ExpectSentence(message);
            // Whoever is in a transaction is told when it goes.
            if (gone) EXPECT_TRUE(Says(message, "The transaction was taken back with it"));
            if (user.connection.InTransaction()) user.connection.RollbackTrans();
            EXPECT_EQ(Stored("SELECT count(*) || ' ' || min(nota) FROM clients"), "3 nota 1");
        } else {
            EXPECT_EQ(Stored("SELECT count(*) || ' ' || min(nota) FROM clients"), "23 changed");
        }
        EXPECT_EQ(Integrity(), "ok");
        user.connection.Execute("UPDATE clients SET nota = 'after' WHERE id = 1");
        EXPECT_EQ(Stored("SELECT nota FROM clients WHERE id = 1"), "after");
        return message != "no error" || disk.Failed();
    });
}

TEST_P(Disk, ReadingThatFailsOnTheWaySaysSoAndDoesNotPassForTheEnd) {
    if (GetParam().kind != Kind::ReadError) {
        // Reading writes nothing: the same disk does it no harm.
        Make(2000);
        User user(Here());
        Break(1);
        EXPECT_EQ(user.table.RecordCount(), 2000);
        return;
    }
    Make(2000);
    bool met = false;
    AtEachOperation([&](int operation) {
        SCOPED_TRACE(operation);
        User user(Here());
        user.connection.Execute("PRAGMA cache_size = 2");
        user.table.Close();
        Break(operation);
        AnsiString message = MessageOf([&] { user.table.Open(); });
        if (message == "no error") message = MessageOf([&] { user.table.Last(); });
        disk.Mend();
        if (message == "no error") return disk.Failed();
        ExpectSentence(message);
        if (user.table.Active() && user.table.ReadingFailed()) {
            met = true;
            const int64_t there = user.table.RecordsFetched();
            EXPECT_LT(there, 2000);
            // What only shows records shows those that are there.
            EXPECT_EQ(user.table.FetchTo(there + 10), there);
            for (int i = 0; i < 2; ++i)
                EXPECT_TRUE(Says(MessageOf([&] { user.table.Last(); }), "Not all records are there: refresh"));
            EXPECT_TRUE(Says(MessageOf([&] { user.table.Locate("id", Variant(-1)); }), "Not all records are there"));
            EXPECT_TRUE(user.table.Locate("id", Variant(1)));
            // Neither does it stand in the way of what was typed.
            user.Type("typed");
            EXPECT_EQ(user.Post(), "no error");
            user.table.Refresh();
        } else {
            user.table.Open();
        }
        EXPECT_EQ(user.table.RecordCount(), 2000);
        return true;
    });
    // Drivers may read everything at once.
    EXPECT_TRUE(met || GetParam().throughDriver);
}

namespace {

std::vector<Failure> Failures() {
    std::vector<Failure> failures = {{"FullOnce", Kind::Full, Duration::Once},
                                     {"Full", Kind::Full, Duration::FromThenOn},
                                     {"WriteFailsOnce", Kind::WriteError, Duration::Once},
                                     {"WriteFails", Kind::WriteError, Duration::FromThenOn},
                                     {"ShortWrite", Kind::ShortWrite, Duration::Once},
                                     {"SyncFailsOnce", Kind::SyncError, Duration::Once},
                                     {"SyncFails", Kind::SyncError, Duration::FromThenOn},
                                     {"ReadFailsOnce", Kind::ReadError, Duration::Once},
                                     {"ReadFails", Kind::ReadError, Duration::FromThenOn}};
    for (size_t i = 0; i < 9; ++i) {
        failures.push_back(failures[i]);
        failures.back().throughDriver = true;
    }
    return failures;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(All, Disk, testing::ValuesIn(Failures()), [](const auto& each) {
    return std::string(each.param.name) + (each.param.throughDriver ? "ThroughODBC" : "");
});

TEST_F(EmbeddedFile, AFileThatMayGrowNoMoreKeepsTheRecordInTheBuffer) {
    Make();
    const int status = InAnotherProcess([&] {
        signal(SIGXFSZ, SIG_IGN);
        User user(Where());
        user.TypeNew(4, std::string(100000, 'x'));
        rlimit limit{};
        getrlimit(RLIMIT_FSIZE, &limit);
        const rlim_t before = limit.rlim_cur;
        limit.rlim_cur = 65536;
        setrlimit(RLIMIT_FSIZE, &limit);
        const AnsiString message = user.Post();
        EXPECT_TRUE(Says(message, "the disk"));
        EXPECT_TRUE(Says(message, "Nothing of this was stored"));
        user.ExpectTyped(std::string(100000, 'x'), dsInsert);
        EXPECT_EQ(Stored("SELECT count(*) FROM clients"), "3");
        limit.rlim_cur = before;
        setrlimit(RLIMIT_FSIZE, &limit);
        EXPECT_EQ(user.Post(), "no error");
    });
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    EXPECT_EQ(Stored("SELECT count(*) FROM clients"), "4");
    EXPECT_EQ(Integrity(), "ok");
}
