#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "faults/another.h"
#include "faults/embedded_file.h"

using namespace faults;
namespace fs = std::filesystem;

// Files of the embedded engine that others hold, that may not be written, that are cut short or written over, and
// programs that are killed while they write.
namespace {

std::string BytesOf(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

void Write(const std::string& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary | std::ios::trunc) << bytes;
}

}  // namespace

TEST_F(EmbeddedFile, AFileThatAnotherProgramChangesIsReportedAndCanBeWrittenAfter) {
    Make();
    Another other([&](const auto& soFar) {
        TADOConnection connection(nullptr);
        connection.SetConnectionString(Where());
        connection.BeginTrans();
        connection.Execute("UPDATE clients SET nom = 'theirs' WHERE id = 2");
        soFar();
        connection.CommitTrans();
    });
    User user(Where());
    EXPECT_EQ(user.table.RecordCount(), 3);  // reading is not in the way
    user.Type("typed");
    EXPECT_TRUE(Says(user.Post(), "another program is using the database and has not finished. Try again"));
    user.ExpectTyped("typed");
    EXPECT_TRUE(Says(MessageOf([&] { user.connection.BeginTrans(); }), "another program is using the database"));
    EXPECT_FALSE(user.connection.InTransaction());
    EXPECT_TRUE(Says(MessageOf([&] { user.connection.Execute("DELETE FROM clients"); }), "another program is using"));
    other.GoOnToTheEnd();
    EXPECT_EQ(user.Post(), "no error");
    EXPECT_EQ(Stored("SELECT nota FROM clients WHERE id = 1"), "typed");
    EXPECT_EQ(Stored("SELECT nom FROM clients WHERE id = 2"), "theirs");
}

TEST_F(EmbeddedFile, AFileThatAnotherProgramChangesIsReportedThroughADriverToo) {
    Make();
    Another other([&](const auto& soFar) {
        TADOConnection connection(nullptr);
        connection.SetConnectionString(Where());
        connection.BeginTrans();
        connection.Execute("UPDATE clients SET nom = 'theirs' WHERE id = 2");
        soFar();
        connection.CommitTrans();
    });
    User user(ThroughDriver());
    EXPECT_EQ(user.table.RecordCount(), 3);
    user.Type("typed");
    EXPECT_TRUE(Says(user.Post(), "another program is using the database and has not finished. Try again"));
    user.ExpectTyped("typed");
    EXPECT_FALSE(user.connection.InTransaction());
    other.GoOnToTheEnd();
    EXPECT_EQ(user.Post(), "no error");
    EXPECT_EQ(Stored("SELECT nota FROM clients WHERE id = 1"), "typed");
    EXPECT_EQ(Stored("SELECT nom FROM clients WHERE id = 2"), "theirs");
}

TEST_F(EmbeddedFile, AFileThatAnotherProgramHoldsWholeIsReported) {
    Make();
    Another other([&](const auto& soFar) {
        TADOConnection connection(nullptr);
        connection.SetConnectionString(Where());
        connection.Execute("PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE; UPDATE clients SET nom = 'theirs'");
        soFar();
        connection.Execute("COMMIT");
    });
    EXPECT_TRUE(Says(MessageOf([&] { User user(Where()); }), "another program is using the database"));
    other.GoOnToTheEnd();
    User user(Where());
    EXPECT_EQ(user.Value("SELECT count(*) FROM clients WHERE nom = 'theirs'"), "3");
}

TEST_F(EmbeddedFile, AProgramThatIsKilledInATransactionLeavesNothingOfIt) {
    Make();
    {
        Another other([&](const auto& soFar) {
            User user(Where());
            user.connection.BeginTrans();
            user.connection.Execute("PRAGMA cache_size = 5");
            for (int i = 0; i < 50; ++i)
                user.connection.Execute("INSERT INTO clients VALUES (" + std::to_string(100 + i) + ", 'x', '" +
                                        std::string(4000, 'y') + "')");
            user.Type("theirs");
            user.table.Post();
            soFar();
        });
        User before(Where());
        other.Kill();
        // Who was there already, goes on; who comes, finds it whole.
        before.Type("mine");
        EXPECT_EQ(before.Post(), "no error");
    }
    EXPECT_EQ(Integrity(), "ok");
    EXPECT_EQ(Stored("SELECT count(*) || ' ' || min(nota) FROM clients"), "3 mine");
    User after(Where());
    EXPECT_EQ(after.table.RecordCount(), 3);
}

TEST_F(EmbeddedFile, AProgramThatIsKilledAfterItStoredHasStored) {
    Make();
    Another other([&](const auto& soFar) {
        User user(Where());
        user.Type("stored");
        user.table.Post();
        soFar();
    });
    other.Kill();
    EXPECT_EQ(Integrity(), "ok");
    EXPECT_EQ(User(Where()).table.FieldByName("nota")->AsString(), "stored");
}

TEST_F(EmbeddedFile, AFileThatMayOnlyBeReadIsReadAndSaysSoWhenItIsWritten) {
    Make();
    fs::permissions(file_, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    const int status = AsOrdinaryUser([&] {
        User user(Where());
        EXPECT_EQ(user.table.RecordCount(), 3);
        user.Type("typed");
        EXPECT_TRUE(Says(user.Post(), "the database may only be read"));
        user.ExpectTyped("typed");
    });
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    EXPECT_EQ(Integrity(), "ok");
}

TEST_F(EmbeddedFile, AFileWithoutALogIsReadWhereNothingMayBeWritten) {
    constexpr auto kReadOnlyFile = fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read;
    constexpr auto kReadOnlyFolder =
        kReadOnlyFile | fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec;
    for (const bool folder : {false, true}) {
        SCOPED_TRACE(folder);
        fs::permissions(folder_, fs::perms::all);
        Make();
        Stored("PRAGMA journal_mode = DELETE");
        fs::permissions(file_, folder ? fs::perms::all : kReadOnlyFile);
        if (folder) fs::permissions(folder_, kReadOnlyFolder);
        const int status = AsOrdinaryUser([&] {
            User user(Where());
            EXPECT_EQ(user.table.RecordCount(), 3);
            user.Type("typed");
            EXPECT_TRUE(Says(user.Post(), "the database may only be read"));
            user.ExpectTyped("typed");
        });
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
        EXPECT_EQ(Integrity(), "ok");
    }
}

TEST_F(EmbeddedFile, AFileWithALogSaysWhatItNeedsWhereNothingMayBeWritten) {
    Make();
    fs::permissions(file_, fs::perms::all);
    fs::permissions(folder_, fs::perms::owner_read | fs::perms::owner_exec | fs::perms::group_read |
                                 fs::perms::group_exec | fs::perms::others_read | fs::perms::others_exec);
    const int status = AsOrdinaryUser([&] {
        EXPECT_TRUE(Says(MessageOf([&] { User user(Where()); }),
                         "the file cannot be opened. Look at its name and its folder, and whether you may read and "
                         "write both"));
    });
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    EXPECT_EQ(Integrity(), "ok");
}

TEST_F(EmbeddedFile, SqlWithANulDoesNothingRatherThanAPart) {
    Make();
    User user(Where());
    const AnsiString half = AnsiString("DELETE FROM clients\0 WHERE id = 7", 33);
    EXPECT_EQ(MessageOf([&] { user.connection.Execute(half); }),
              "EDatabaseError: The statement holds a NUL character outside its texts");
    EXPECT_EQ(MessageOf([&] { user.Value(AnsiString("SELECT 1\0, 2", 12)); }),
              "EDatabaseError: The statement holds a NUL character outside its texts");
    EXPECT_EQ(Stored("SELECT count(*) FROM clients"), "3");
}

TEST_F(EmbeddedFile, AFolderInWhichNothingMayBeMadeSaysSo) {
    fs::permissions(folder_, fs::perms::owner_read | fs::perms::owner_exec | fs::perms::group_read |
                                 fs::perms::group_exec | fs::perms::others_read | fs::perms::others_exec);
    const int status = AsOrdinaryUser([&] {
        EXPECT_TRUE(Says(MessageOf([&] { User user(Where()); }), "the file cannot be opened. Look at its name"));
    });
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

namespace {

// Works with what may be a ruin: whatever it is, each step goes well or says what is wrong.
void WorkWith(const AnsiString& where) {
    const auto step = [&](const std::function<void()>& action) {
        const AnsiString message = MessageOf(action);
        if (message == "no error") return true;
        EXPECT_EQ(message.substr(0, 14), "EDatabaseError") << message;
        EXPECT_GT(message.size(), 20u);
        return false;
    };
    std::unique_ptr<User> user;
    if (!step([&] { user = std::make_unique<User>(where); })) return;
    step([&] { user->table.Last(); });
    step([&] {
        TStringList names;
        user->connection.GetTableNames(names);
    });
    if (!step([&] { user->Type("typed"); })) return;
    if (!step([&] { user->table.Post(); })) user->ExpectTyped("typed");
    step([&] { user->table.Refresh(); });
}

}  // namespace

TEST_F(EmbeddedFile, AFileThatIsCutShortAnywhereIsReportedOrWorks) {
    Make(40);
    const std::string whole = BytesOf(file_);
    ASSERT_GE(whole.size(), 8192u);
    for (size_t size = 0; size < whole.size(); size += 512) {
        SCOPED_TRACE(size);
        for (const char* tail : {"-wal", "-shm"}) fs::remove(file_ + tail);
        Write(file_, whole.substr(0, size));
        WorkWith(Where());
    }
    Write(file_, whole);
    EXPECT_EQ(Integrity(), "ok");
}

TEST_F(EmbeddedFile, AFileThatIsWrittenOverAnywhereIsReportedOrWorks) {
    Make(300);
    const std::string whole = BytesOf(file_);
    std::mt19937 random(20261121);
    bool said = false;
    for (size_t at = 0; at < whole.size(); at += 1024) {
        SCOPED_TRACE(at);
        for (const char* tail : {"-wal", "-shm"}) fs::remove(file_ + tail);
        std::string noisy = whole;
        for (size_t i = at; i < std::min(at + 1024, whole.size()); ++i) noisy[i] = static_cast<char>(random());
        Write(file_, noisy);
        WorkWith(Where());
        said = said || MessageOf([&] {
                           User user(Where());
                           user.table.Last();
                       }).find("the database file is damaged. Write no more to it") != AnsiString::npos;
    }
    EXPECT_TRUE(said);
}

TEST_F(EmbeddedFile, AWriteAheadLogThatIsCutShortOrNoisyLosesOnlyWhatStoodThere) {
    Make(10);
    // A log with a few changes in it, as a program leaves it that is killed.
    {
        Another other([&](const auto& soFar) {
            User user(Where());
            user.connection.Execute("PRAGMA wal_autocheckpoint = 0");
            for (int i = 1; i <= 5; ++i)
                user.connection.Execute("UPDATE clients SET nota = 'change " + std::to_string(i) + "' WHERE id = 1");
            soFar();
        });
        other.Kill();
    }
    const std::string base = BytesOf(file_), log = BytesOf(file_ + "-wal");
    ASSERT_GT(log.size(), 4096u * 5);
    std::mt19937 random(20261121);
    for (const bool noisy : {false, true})
        for (size_t at = 0; at <= log.size(); at += 512) {
            SCOPED_TRACE((noisy ? "noisy at " : "cut at ") + std::to_string(at));
            fs::remove(file_ + "-shm");
            Write(file_, base);
            std::string changed = noisy ? log : log.substr(0, at);
            if (noisy)
                for (size_t i = at; i < std::min(at + 256, log.size()); ++i) changed[i] = static_cast<char>(random());
            Write(file_ + "-wal", changed);
            User user(Where());
            // One of the states that there were.
            const AnsiString held = user.table.FieldByName("nota")->AsString();
            EXPECT_TRUE(held == "nota 1" || held.substr(0, 7) == "change ") << held;
            if (at == log.size()) EXPECT_EQ(held, "change 5");
            EXPECT_EQ(user.table.RecordCount(), 10);
            user.Type("typed");
            EXPECT_EQ(user.Post(), "no error");
            EXPECT_EQ(Integrity(), "ok");
        }
}

TEST_F(EmbeddedFile, AStatementThatTakesTooLongIsBrokenOff) {
    Make();
    const AnsiString endless = "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) SELECT count(*) FROM n";
    User user(Where() + ";Command Timeout=1");
    EXPECT_TRUE(Says(MessageOf([&] { user.Value(endless); }), "it took longer than was allowed and was broken off"));
    EXPECT_EQ(user.Value("SELECT count(*) FROM clients"), "3");
    // What was done in a transaction goes when the engine breaks off a change in it.
    user.connection.BeginTrans();
    user.connection.Execute("DELETE FROM clients WHERE id = 3");
    const AnsiString message = MessageOf([&] {
        user.connection.Execute(
            "INSERT INTO clients WITH RECURSIVE n(i) AS (SELECT 4 UNION ALL SELECT i + 1 FROM n) "
            "SELECT i, 'x', 'y' FROM n");
    });
    EXPECT_TRUE(Says(message, "it took longer than was allowed"));
    EXPECT_TRUE(Says(message, "The transaction was taken back with it"));
    EXPECT_FALSE(user.connection.InTransaction());
    EXPECT_EQ(Stored("SELECT count(*) FROM clients"), "3");
    EXPECT_EQ(Integrity(), "ok");
    user.Type("typed");
    EXPECT_EQ(user.Post(), "no error");
}

TEST_F(EmbeddedFile, TimesThatCannotBeAreRefused) {
    EXPECT_EQ(MessageOf([&] { User user("Provider=SQLite;Command Timeout=soon"); }),
              "EDatabaseError: Command Timeout=soon: a number from 0 to 86400 is wanted");
    EXPECT_EQ(MessageOf([&] { User user("Provider=SQLite;Busy Timeout=-1"); }),
              "EDatabaseError: Busy Timeout=-1: a number from 0 to 3600000 is wanted");
}
