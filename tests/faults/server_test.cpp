#include <chrono>

#include "faults/relay.h"
#include "faults/user.h"
#include "platform/access/fault.h"
#include "platform/text/format_settings.h"
#include "providers/odbc/connection.h"
#include "providers/postgresql/connection.h"
#include "servers/postgresql_cluster.h"

using namespace faults;
using Fault = Relay::Fault;

// Servers that stop, connections that are cut at each of the requests of a change, answers that stay away or are
// spoilt.
namespace {

struct Way {
    const char* name;
    bool odbc;
    bool paged;  // all tables are taken for large ones
};

void PrintTo(const Way& way, std::ostream* stream) { *stream << way.name; }

servers::PostgresqlCluster& Cluster() {
    static servers::PostgresqlCluster cluster;
    return cluster;
}

struct Cut {
    const char* name;
    Fault fault;
    size_t bytes;
};
constexpr Cut kCuts[] = {{"cut before it arrives", Fault::CutBeforeRequest, 0},
                         {"cut when it is done", Fault::CutAfterRequest, 0},
                         {"cut in the answer", Fault::CutInAnswer, 3},
                         {"garbage for an answer", Fault::Garbage, 0},
                         {"garbage in the answer", Fault::GarbageInAnswer, 9}};

class Server : public testing::TestWithParam<Way> {
  protected:
    Server() : relay(Cluster().Host()) {
        RegisterPostgresqlProvider();
        RegisterOdbcProvider();
        FormatSettings() = InvariantFormatSettings();
        direct.SetConnectionString(Cluster().ConnectionString());
        if (GetParam().paged) TCustomADODataSet::PagedFrom = 0;
    }
    ~Server() override { TCustomADODataSet::PagedFrom = TCustomADODataSet::kLargeTable; }
    AnsiString Where(const std::string& host) const {
        if (!GetParam().odbc)
            return "Provider=PostgreSQL;Data Source=" + host +
                   ";Initial Catalog=postgres;User ID=vyn;Connect Timeout=2";
        return "Provider=MSDASQL;Driver=PostgreSQL Unicode;Servername=" + host +
               ";Port=5432;Initial Catalog=postgres;User ID=vyn;Connect Timeout=2";
    }
    AnsiString Through() const { return Where(relay.Folder()); }
    void Make(int records = 3) {
        direct.Execute("DROP SCHEMA public CASCADE; CREATE SCHEMA public");
        direct.Execute("CREATE TABLE clients (id INTEGER NOT NULL PRIMARY KEY, nom VARCHAR(40), nota TEXT)");
        direct.Execute("INSERT INTO clients SELECT i, 'nom ' || i, 'nota ' || i FROM generate_series(1, " +
                       std::to_string(records) + ") AS i");
    }
    // Another user, of the table as it was made.
    void Renew(std::unique_ptr<User>& user) {
        user.reset();
        Make();
        user = std::make_unique<User>(Through() + ";Command Timeout=1");
    }
    AnsiString Stored(const AnsiString& sql) {
        TADOQuery query(nullptr);
        query.SetConnection(&direct);
        query.SetParamCheck(false);
        query.SQL()->SetText(sql);
        query.Open();
        return query.Fields(0)->AsString();
    }
    // Nothing of clients that are gone may go on at the server; it sees that they went when it looks.
    void ExpectNothingLeft() {
        AnsiString left;
        for (int i = 0; i < 100000; ++i) {
            left = Stored(
                "SELECT count(*) FROM pg_stat_activity WHERE state LIKE 'idle in transaction%' AND pid <> "
                "pg_backend_pid()");
            if (left == "0") return;
        }
        ADD_FAILURE() << left << " transactions are left open";
    }
    // Runs `action` with the fault at its first request, its second and so on, until it has no more; `after` gets the
    // message. Gives how many requests there were.
    int AtEachRequest(const Cut& cut, const std::function<void()>& before, const std::function<AnsiString()>& action,
                      const std::function<void(const AnsiString&)>& after) {
        constexpr int kMostRequests = 200;
        for (int request = 1; request < kMostRequests; ++request) {
            SCOPED_TRACE(std::string(cut.name) + ", request " + std::to_string(request));
            before();
            relay.FailAt(request, cut.fault, cut.bytes);
            const AnsiString message = action();
            const bool failed = relay.Failed();
            relay.Mend();
            after(message);
            if (!failed) {
                EXPECT_EQ(message, "no error");
                return request - 1;
            }
        }
        ADD_FAILURE() << "it never ends";
        return 0;
    }
    static bool SaysThatItIsUnknown(const AnsiString& message) {
        return message.find(kOutcomeUnknown) != AnsiString::npos;
    }
    static void ExpectSentence(const AnsiString& message) {
        EXPECT_TRUE(message.find(kConnectionLost) != AnsiString::npos ||
                    message.find(kServerSilent) != AnsiString::npos ||
                    message.find("The database server sent") != AnsiString::npos)
            << message;
    }

    Relay relay;
    TADOConnection direct{nullptr};
};

}  // namespace

TEST_P(Server, APostThatIsCutAnywhereIsKeptInTheBufferAndCanBeRepeated) {
    std::unique_ptr<User> user;
    for (const Cut& cut : kCuts) {
        const int requests = AtEachRequest(
            cut,
            [&] {
                Renew(user);
                user->Type("typed");
            },
            [&] { return user->Post(); },
            [&](const AnsiString& message) {
                const AnsiString stored = Stored("SELECT nota FROM clients WHERE id = 1");
                if (message == "no error") {
                    EXPECT_EQ(stored, "typed");
                    return;
                }
                ExpectSentence(message);
                user->ExpectTyped("typed");
                EXPECT_FALSE(user->connection.InTransaction());
                ExpectNothingLeft();
                // Whole, or not at all; and nobody is told that it is not there when it may be.
                EXPECT_TRUE(stored == "nota 1" || (stored == "typed" && SaysThatItIsUnknown(message))) << message;
                EXPECT_EQ(user->Post(), "no error");
                EXPECT_EQ(Stored("SELECT nota FROM clients WHERE id = 1"), "typed");
                EXPECT_EQ(Stored("SELECT count(*) FROM clients"), "3");
                EXPECT_EQ(relay.Connections(), 1);
            });
        EXPECT_GT(requests, 1) << cut.name;
    }
}

TEST_P(Server, AnInsertedRecordThatIsCutAnywhereIsKeptInTheBuffer) {
    std::unique_ptr<User> user;
    for (const Cut& cut : kCuts)
        AtEachRequest(
            cut,
            [&] {
                Renew(user);
                user->TypeNew(4, "typed");
            },
            [&] { return user->Post(); },
            [&](const AnsiString& message) {
                if (message == "no error") return;
                ExpectSentence(message);
                user->ExpectTyped("typed", dsInsert);
                ExpectNothingLeft();
                const AnsiString stored = Stored("SELECT count(*) FROM clients");
                if (stored == "4") {
                    EXPECT_TRUE(SaysThatItIsUnknown(message)) << message;
                    EXPECT_TRUE(Says(user->Post(), "duplicate key"));
                    user->ExpectTyped("typed", dsInsert);
                    user->table.Cancel();
                    user->table.Refresh();
                } else {
                    EXPECT_EQ(user->Post(), "no error");
                }
                EXPECT_EQ(user->table.RecordCount(), 4);
                EXPECT_EQ(Stored("SELECT count(*) FROM clients WHERE nota = 'typed'"), "1");
            });
}

TEST_P(Server, WhatWasThereStaysWhenItCannotBeRefreshed) {
    std::unique_ptr<User> user;
    for (const Cut& cut : kCuts)
        AtEachRequest(
            cut,
            [&] {
                Renew(user);
                user->table.Last();
                direct.Execute("UPDATE clients SET nota = 'newer' WHERE id = 3");
            },
            [&] { return MessageOf([&] { user->table.Refresh(); }); },
            [&](const AnsiString& message) {
                ASSERT_TRUE(user->table.Active());
                EXPECT_EQ(user->table.FieldByName("id")->AsInteger(), 3);
                if (message != "no error") {
                    ExpectSentence(message);
                    EXPECT_EQ(user->table.FieldByName("nota")->AsString(), "nota 3");
                    // It can be moved in, and written to, at once.
                    user->table.Prior();
                    EXPECT_EQ(user->table.FieldByName("id")->AsInteger(), 2);
                    user->table.Refresh();
                    user->table.Next();
                }
                EXPECT_EQ(user->table.FieldByName("nota")->AsString(), "newer");
                ExpectNothingLeft();
            });
}

TEST_P(Server, ATransactionThatIsCutAnywhereIsWholeOrNotThere) {
    std::unique_ptr<User> user;
    for (const Cut& cut : kCuts)
        AtEachRequest(
            cut, [&] { Renew(user); },
            [&] {
                return MessageOf([&] {
                    user->connection.BeginTrans();
                    user->connection.Execute("INSERT INTO clients VALUES (4, 'a', 'b')");
                    user->Type("typed");
                    user->table.Post();
                    user->connection.Execute("INSERT INTO clients VALUES (5, 'a', 'b')");
                    user->connection.CommitTrans();
                });
            },
            [&](const AnsiString& message) {
                const AnsiString stored = Stored("SELECT count(*) || ' ' || min(nota) FROM clients");
                if (message == "no error") {
                    EXPECT_EQ(stored.substr(0, 1), "5");
                    return;
                }
                ExpectSentence(message);
                EXPECT_FALSE(user->connection.InTransaction());
                ExpectNothingLeft();
                EXPECT_TRUE(stored == "3 nota 1" || (stored.substr(0, 1) == "5" && SaysThatItIsUnknown(message)))
                    << stored << message;
                // Or nothing had been begun.
                if (stored == "3 nota 1" && !SaysThatItIsUnknown(message) && user->table.IsEditing())
                    EXPECT_TRUE(Says(message, kTransactionLost));
                if (user->table.IsEditing()) user->table.Cancel();
                user->connection.Execute("UPDATE clients SET nota = 'after' WHERE id = 2");
                EXPECT_EQ(Stored("SELECT nota FROM clients WHERE id = 2"), "after");
            });
}

TEST_P(Server, AResultThatIsCutAnywhereSaysThatItIsNotWhole) {
    constexpr int kRecords = 30000;
    Make(kRecords);
    std::unique_ptr<User> user;
    for (const Cut& cut : kCuts)
        AtEachRequest(
            cut,
            [&] {
                user.reset();
                user = std::make_unique<User>(Through() + ";Command Timeout=1");
            },
            [&] { return MessageOf([&] { user->table.Last(); }); },
            [&](const AnsiString& message) {
                if (message == "no error") {
                    EXPECT_EQ(user->table.RecordCount(), kRecords);
                    return;
                }
                ExpectSentence(message);
                if (GetParam().paged) {
                    // A page is simply asked for again.
                    user->table.Last();
                    EXPECT_EQ(user->table.FieldByName("id")->AsInteger(), kRecords);
                } else {
                    EXPECT_TRUE(user->table.ReadingFailed());
                    EXPECT_LT(user->table.RecordsFetched(), kRecords);
                    EXPECT_TRUE(Says(MessageOf([&] { user->table.Last(); }), "Not all records are there: refresh"));
                }
                user->Type("typed");
                EXPECT_EQ(user->Post(), "no error");
                user->table.Refresh();
                EXPECT_EQ(user->table.RecordCount(), kRecords);
                ExpectNothingLeft();
            });
}

TEST_P(Server, OpeningThatIsCutAnywhereCanBeRepeated) {
    Make();
    std::unique_ptr<User> user;
    for (const Cut& cut : kCuts)
        AtEachRequest(
            cut,
            [&] {
                user = std::make_unique<User>(Through() + ";Command Timeout=1");
                user->table.Close();
            },
            [&] { return MessageOf([&] { user->table.Open(); }); },
            [&](const AnsiString& message) {
                if (message != "no error") {
                    ExpectSentence(message);
                    EXPECT_FALSE(user->table.Active());
                    user->table.Open();
                }
                EXPECT_EQ(user->table.RecordCount(), 3);
                EXPECT_EQ(relay.Connections(), 1);
            });
}

TEST_P(Server, AServerThatDoesNotAnswerIsGivenUpAfterTheTimeAllowed) {
    Make();
    for (const Fault fault : {Fault::Hold, Fault::HoldInAnswer}) {
        User user(Through() + ";Command Timeout=1");
        user.Type("typed");
        relay.FailAt(1, fault, 4);
        const AnsiString message = user.Post();
        EXPECT_TRUE(Says(message, kServerSilent));
        user.ExpectTyped("typed");
        EXPECT_FALSE(user.connection.InTransaction());
        relay.Mend();
        EXPECT_EQ(user.Post(), "no error");
        EXPECT_EQ(Stored("SELECT nota FROM clients WHERE id = 1"), "typed");
        direct.Execute("UPDATE clients SET nota = 'nota 1' WHERE id = 1");
        ExpectNothingLeft();
    }
}

TEST_P(Server, AServerThatFallsSilentInATransactionOrAResultIsGivenUp) {
    Make(20000);
    User user(Through() + ";Command Timeout=1");
    user.connection.BeginTrans();
    user.connection.Execute("UPDATE clients SET nota = 'x' WHERE id = 5");
    relay.FailAt(1, Fault::Hold);
    AnsiString message = MessageOf([&] { user.connection.Execute("UPDATE clients SET nota = 'y' WHERE id = 6"); });
    EXPECT_TRUE(Says(message, AnsiString(kServerSilent) + kTransactionLost));
    EXPECT_FALSE(user.connection.InTransaction());
    relay.Mend();
    EXPECT_EQ(user.Value("SELECT nota FROM clients WHERE id = 5"), "nota 5");
    user.table.Refresh();
    relay.FailAt(1, Fault::HoldInAnswer, 100);
    message = MessageOf([&] { user.table.Last(); });
    if (!GetParam().odbc) EXPECT_TRUE(Says(message, kServerSilent));
    relay.Mend();
    user.table.Refresh();
    EXPECT_EQ(user.table.RecordCount(), 20000);
    ExpectNothingLeft();
}

TEST_P(Server, AServerThatDoesNotEvenLetInIsGivenUpAfterTheTimeAllowed) {
    Make();
    User user(Through() + ";Command Timeout=1");
    relay.FailAt(1, Fault::Hold);
    EXPECT_TRUE(Says(MessageOf([&] { user.connection.Execute("DELETE FROM clients WHERE id = 1"); }), kServerSilent));
    const auto before = std::chrono::steady_clock::now();
    const AnsiString message = MessageOf([&] { User late(Through()); });
    // Far from for ever: the two seconds that are allowed, and what a loaded machine adds.
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(60));
    EXPECT_NE(message, "no error");
    EXPECT_NE(message.find("timeout"), AnsiString::npos) << message;
}

TEST_P(Server, AStatementThatTakesTooLongIsBrokenOffAndTheTransactionGoesOn) {
    Make();
    User user(Through() + ";Command Timeout=1");
    user.connection.BeginTrans();
    user.connection.Execute("UPDATE clients SET nota = 'kept' WHERE id = 2");
    EXPECT_TRUE(Says(MessageOf([&] { user.connection.Execute("SELECT pg_sleep(600)"); }),
                     "it took longer than was allowed and was broken off"));
    EXPECT_TRUE(user.connection.InTransaction());
    user.connection.CommitTrans();
    EXPECT_EQ(Stored("SELECT nota FROM clients WHERE id = 2"), "kept");
    // A dataset may have a time of its own.
    User patient(Through() + ";Command Timeout=1", 100);
    EXPECT_EQ(patient.connection.CommandTimeout, 30);
    TADOQuery query(nullptr);
    query.SetConnection(&patient.connection);
    query.CommandTimeout = 100;
    query.SQL()->SetText("SELECT pg_sleep(1.2)");
    query.Open();
    EXPECT_EQ(query.RecordCount(), 1);
}

TEST_P(Server, ARecordThatAnotherUserHoldsIsGivenUpAfterTheTimeAllowed) {
    Make();
    User other(Through());
    other.connection.BeginTrans();
    other.connection.Execute("UPDATE clients SET nom = 'theirs' WHERE id = 1");
    User user(Through() + ";Command Timeout=1");
    user.Type("typed");
    EXPECT_TRUE(Says(user.Post(), "it took longer than was allowed and was broken off"));
    user.ExpectTyped("typed");
    EXPECT_FALSE(user.connection.InTransaction());
    other.connection.RollbackTrans();
    EXPECT_EQ(user.Post(), "no error");
    EXPECT_EQ(Stored("SELECT nota FROM clients WHERE id = 1"), "typed");
}

TEST_P(Server, AServerThatStopsInTheMiddleIsReportedAndFoundAgain) {
    Make(20000);
    direct.Close();
    User user(Where(Cluster().Host()));
    const auto restart = [] {
        Cluster().Stop();
        Cluster().Start();
    };
    // While nothing goes on nobody notices.
    restart();
    EXPECT_EQ(user.Value("SELECT count(*) FROM clients"), "20000");
    // A record is being typed.
    user.Type("typed");
    Cluster().Stop();
    EXPECT_NE(user.Post(), "no error");
    user.ExpectTyped("typed");
    EXPECT_NE(user.Post(), "no error");
    user.ExpectTyped("typed");
    Cluster().Start();
    EXPECT_EQ(user.Post(), "no error");
    EXPECT_EQ(Stored("SELECT nota FROM clients WHERE id = 1"), "typed");
    direct.Close();
    // A transaction is open.
    user.connection.BeginTrans();
    user.connection.Execute("DELETE FROM clients WHERE id = 2");
    restart();
    EXPECT_TRUE(Says(MessageOf([&] { user.connection.Execute("DELETE FROM clients WHERE id = 3"); }),
                     AnsiString(kConnectionLost) + kTransactionLost));
    EXPECT_FALSE(user.connection.InTransaction());
    EXPECT_EQ(Stored("SELECT count(*) FROM clients"), "20000");
    direct.Close();
    // A transaction is open, and is stored.
    user.connection.BeginTrans();
    user.connection.Execute("DELETE FROM clients WHERE id = 2");
    restart();
    EXPECT_TRUE(Says(MessageOf([&] { user.connection.CommitTrans(); }), kConnectionLost));
    EXPECT_EQ(Stored("SELECT count(*) FROM clients"), "20000");
    direct.Close();
    // A transaction is open, and is taken back: just as well.
    user.connection.BeginTrans();
    user.connection.Execute("DELETE FROM clients WHERE id = 2");
    restart();
    MessageOf([&] { user.connection.RollbackTrans(); });
    EXPECT_FALSE(user.connection.InTransaction());
    EXPECT_EQ(Stored("SELECT count(*) FROM clients"), "20000");
    direct.Close();
    // A result is read halfway.
    user.table.Refresh();
    EXPECT_LT(user.table.RecordsFetched(), 20000);
    restart();
    const AnsiString message = MessageOf([&] { user.table.Last(); });
    if (message != "no error") EXPECT_TRUE(Says(message, kConnectionLost));
    user.table.Refresh();
    user.table.Last();
    EXPECT_EQ(user.table.FieldByName("id")->AsInteger(), 20000);
}

TEST_P(Server, NothingIsLeftAtTheServerWhenATableIsClosed) {
    Make(20000);
    User user(Through());
    for (int i = 0; i < 3; ++i) {
        user.Type("typed " + std::to_string(i));
        EXPECT_EQ(user.Post(), "no error");
    }
    user.table.Close();
    EXPECT_EQ(user.Value("SELECT count(*) FROM pg_prepared_statements"), "0");
    // Less the one that reads this.
    EXPECT_EQ(user.Value("SELECT count(*) FROM pg_cursors WHERE name LIKE 'vyn%'"), GetParam().odbc ? "0" : "1");
    EXPECT_EQ(relay.Connections(), 1);
    user.connection.Close();
    EXPECT_EQ(relay.Connections(), 0);
}

INSTANTIATE_TEST_SUITE_P(All, Server,
                         testing::Values(Way{"PostgreSQL", false, false}, Way{"PostgreSQLInPages", false, true},
                                         Way{"PostgreSQLThroughODBC", true, false}),
                         [](const auto& each) { return std::string(each.param.name); });
