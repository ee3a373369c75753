#include <gtest/gtest.h>

#include "platform/access/ado.h"
#include "platform/text/exceptions.h"
#include "platform/text/format_settings.h"
#include "providers/postgresql/connection.h"
#include "servers/postgresql_cluster.h"
#include "support/errors.h"

using namespace vyn;

// What is this engine's own: its types, its notices, and servers that go and come back.
class Postgresql : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        RegisterPostgresqlProvider();
        cluster_ = std::make_unique<servers::PostgresqlCluster>();
    }
    static void TearDownTestSuite() { cluster_.reset(); }
    Postgresql() {
        FormatSettings() = InvariantFormatSettings();
        connection.SetConnectionString(cluster_->ConnectionString());
        connection.Execute("DROP SCHEMA public CASCADE; CREATE SCHEMA public");
    }
    std::unique_ptr<TADOQuery> Query(const AnsiString& sql) {
        auto query = std::make_unique<TADOQuery>(nullptr);
        query->SetConnection(&connection);
        query->SetParamCheck(false);
        query->SQL()->SetText(sql);
        query->Open();
        return query;
    }
    AnsiString Value(const AnsiString& sql) { return Query(sql)->Fields(0)->AsString(); }

    static std::unique_ptr<servers::PostgresqlCluster> cluster_;
    TADOConnection connection{nullptr};
};

std::unique_ptr<servers::PostgresqlCluster> Postgresql::cluster_;

constexpr char kMade[] = "EDatabaseError: The connection to the database server was lost. It has been made again";

TEST_F(Postgresql, ConnectionStringsNameTheKeyAtFaultAndNoPassword) {
    TADOConnection other(nullptr);
    const auto messageOf = [&](const AnsiString& text) {
        other.SetConnectionString(text);
        return MessageOf([&] { other.Open(); });
    };
    EXPECT_EQ(messageOf("Provider=PostgreSQL;Port=many"),
              "EDatabaseError: Port=many: a number from 1 to 65535 is wanted");
    EXPECT_EQ(messageOf("Provider=PostgreSQL;Connect Timeout=-1"),
              "EDatabaseError: Connect Timeout=-1: a number from 0 to 3600 is wanted");
    const AnsiString nowhere = messageOf("Provider=PostgreSQL;Data Source=/nowhere;Password=secret");
    EXPECT_EQ(nowhere.substr(0, 38), "EDatabaseError: Data Source=/nowhere: ");
    EXPECT_EQ(nowhere.find("secret"), AnsiString::npos);
    const AnsiString noDatabase = messageOf(cluster_->ConnectionString() + ";Initial Catalog=nowhere");
    EXPECT_NE(noDatabase.find("database \"nowhere\" does not exist"), AnsiString::npos) << noDatabase;
}

TEST_F(Postgresql, AReadOnlyConnectionWritesNothing) {
    connection.Execute("CREATE TABLE t (a INTEGER)");
    TADOConnection reading(nullptr);
    reading.SetConnectionString(cluster_->ConnectionString() + ";Mode=Read");
    EXPECT_EQ(MessageOf([&] { reading.Execute("INSERT INTO t VALUES (1)"); }),
              "EDatabaseError: The statement failed: cannot execute INSERT in a read-only transaction");
}

TEST_F(Postgresql, TypesAreReadInBinaryAndAsText) {
    const char* columns =
        "true AS b, 7::int2 AS i2, -7::int4 AS i4, 9000000000::int8 AS i8, 0.1::float4 AS f4, 0.1::float8 AS f8, "
        "-1234.5678::numeric(12,4) AS n, 1e-20::numeric AS tiny, 12345678901234567890::numeric AS huge, "
        "DATE '2001-03-09' AS d, TIME '10:20:30.25' AS t, TIMESTAMP '1753-01-01 10:20:30.25' AS ts, "
        "'caf\xE9'::text AS x, 'ab'::char(4) AS c, '\\x00ff'::bytea AS y, 3000000000::oid AS o, '{\"a\": 1}'::json AS "
        "j";
    // A type that only text is known of makes the whole result come as text.
    for (const char* last : {"", ", '{1,2}'::int4[] AS list"}) {
        const auto query = Query(AnsiString("SELECT ") + columns + last);
        const auto field = [&](const char* name) { return query->FieldByName(name); };
        EXPECT_TRUE(field("b")->AsBoolean());
        EXPECT_EQ(field("i2")->AsInteger(), 7);
        EXPECT_EQ(field("i4")->AsInteger(), -7);
        EXPECT_EQ(field("i8")->AsInteger(), 9000000000);
        EXPECT_EQ(field("f4")->AsFloat(), 0.1);
        EXPECT_EQ(field("f8")->AsFloat(), 0.1);
        EXPECT_EQ(field("n")->AsCurrency().Val, -12345678);
        EXPECT_EQ(field("tiny")->AsFloat(), 1e-20);
        EXPECT_EQ(field("huge")->AsFloat(), 12345678901234567890.0);
        EXPECT_EQ(field("d")->DisplayText(), "03/09/2001");
        EXPECT_EQ(FormatDateTime("hh:nn:ss.zzz", field("t")->AsDateTime()), "10:20:30.250");
        EXPECT_EQ(FormatDateTime("yyyy-mm-dd hh:nn:ss.zzz", field("ts")->AsDateTime()), "1753-01-01 10:20:30.250");
        EXPECT_EQ(field("x")->AsString(), "caf\xE9");
        EXPECT_EQ(field("c")->AsString(), "ab  ");
        EXPECT_EQ(field("y")->RawBytes(), std::string_view("\x00\xFF", 2));
        EXPECT_EQ(field("o")->AsInteger(), 3000000000);
        EXPECT_EQ(field("j")->AsString(), "{\"a\": 1}");
    }
    const auto text = Query(
        "SELECT '{1,2}'::int4[], '550e8400-e29b-41d4-a716-446655440000'::uuid, '[1]'::jsonb, INTERVAL '1 day', "
        "TIMESTAMPTZ '2001-03-09 10:20:30' AS tz, 12.34::money AS m");
    EXPECT_EQ(text->Fields(0)->AsString(), "{1,2}");
    EXPECT_EQ(text->Fields(1)->AsString(), "550e8400-e29b-41d4-a716-446655440000");
    EXPECT_EQ(text->Fields(2)->AsString(), "[1]");
    EXPECT_EQ(text->Fields(3)->AsString(), "1 day");
    // In the session's own time zone.
    EXPECT_EQ(text->FieldByName("tz")->DisplayText(), "03/09/2001 10:20:30");
    EXPECT_EQ(text->FieldByName("m")->AsCurrency().Val, 123400);
}

TEST_F(Postgresql, WhatTheCalendarLacksIsShownAsNone) {
    for (const char* last : {"", ", '{}'::int4[]"}) {
        const auto query = Query(AnsiString("SELECT DATE 'infinity', TIMESTAMP '-infinity', DATE '0044-03-15 BC', "
                                            "TIMESTAMP '12000-01-01 10:00', 'NaN'::numeric(10,2), 'NaN'::numeric") +
                                 last);
        for (int i = 0; i < 5; ++i) EXPECT_TRUE(query->Fields(i)->IsNull()) << i << last;
    }
}

TEST_F(Postgresql, NumbersThatAreTooLargeForRealOnesAreShownAsNone) {
    for (const char* last : {"", ", '{}'::int4[]"}) {
        const auto query = Query(AnsiString("SELECT 1e400::numeric, -1e400::numeric, 1e-400::numeric, 1e308::numeric, "
                                            "('0.' || repeat('0', 500) || '1')::numeric") +
                                 last);
        EXPECT_TRUE(query->Fields(0)->IsNull()) << last;
        EXPECT_TRUE(query->Fields(1)->IsNull()) << last;
        EXPECT_EQ(query->Fields(2)->AsFloat(), 0) << last;
        EXPECT_EQ(query->Fields(3)->AsFloat(), 1e308) << last;
        EXPECT_EQ(query->Fields(4)->AsFloat(), 0) << last;
    }
}

TEST_F(Postgresql, AmountsOfEverySizeAreReadExactly) {
    for (const char* number : {"0", "0.0001", "-0.0001", "0.01", "1", "9999", "10000", "-10000.5",
                               "99999999999999.9999", "100000000", "0.5", "5000.005"}) {
        const auto query = Query(AnsiString("SELECT CAST(") + number + " AS numeric(18,4))");
        EXPECT_EQ(query->Fields(0)->DataType(), ftCurrency);
        EXPECT_EQ(query->Fields(0)->AsString(), number);
    }
}

TEST_F(Postgresql, StatementsThatDoMoreThanReadAreRunAtOnce) {
    connection.Execute("CREATE TABLE t (id SERIAL PRIMARY KEY, a INTEGER)");
    EXPECT_EQ(Value("INSERT INTO t (a) VALUES (1), (2) RETURNING id"), "1");
    EXPECT_EQ(Value("WITH gone AS (DELETE FROM t WHERE a = 1 RETURNING a) SELECT count(*) FROM gone"), "1");
    EXPECT_EQ(Value("SELECT a FROM t FOR UPDATE"), "2");
    EXPECT_EQ(Value("VALUES (3)"), "3");
    EXPECT_EQ(Value("(SELECT 4)"), "4");
    EXPECT_EQ(Value("SHOW datestyle"), "ISO, YMD");
    EXPECT_EQ(MessageOf([&] { Query("SELECT a INTO u FROM t"); }), "EDatabaseError: The statement gives no records");
    EXPECT_EQ(Value("SELECT count(*) FROM u"), "1");
    EXPECT_EQ(MessageOf([&] { Query("SELECT 1; SELECT 2"); }),
              "EDatabaseError: The statement failed: cannot insert multiple commands into a prepared statement");
}

TEST_F(Postgresql, ALargeResultIsReadInPartsAndTheConnectionStaysFree) {
    const auto query = Query("SELECT i, repeat('x', 100) FROM generate_series(1, 200000) AS i");
    EXPECT_LT(query->RecordsFetched(), 1000);
    EXPECT_EQ(Value("SELECT 1"), "1");
    connection.Execute("CREATE TABLE t (a INTEGER)");
    query->Last();
    EXPECT_EQ(query->Fields(0)->AsInteger(), 200000);
    const auto broken = Query("SELECT 1 / (1000 - i) FROM generate_series(1, 2000) AS i");
    EXPECT_EQ(MessageOf([&] { broken->Last(); }), "EDatabaseError: The statement failed: division by zero");
    EXPECT_EQ(Value("SELECT 2"), "2");
}

TEST_F(Postgresql, KeysThatCountComeBackHoweverTheyAreMade) {
    connection.Execute(
        "CREATE TABLE a (id SERIAL PRIMARY KEY, t TEXT); CREATE TABLE b (id INTEGER GENERATED ALWAYS AS IDENTITY "
        "PRIMARY KEY, t TEXT, twice TEXT GENERATED ALWAYS AS (t || t) STORED); CREATE TABLE c (id BIGSERIAL PRIMARY "
        "KEY, t TEXT DEFAULT 'none')");
    for (const char* name : {"a", "b", "c"}) {
        TADOTable table(nullptr);
        table.SetConnection(&connection);
        table.SetTableName(name);
        table.Open();
        for (int i = 1; i <= 2; ++i) {
            table.Append();
            if (*name != 'c') table.FieldByName("t")->SetAsString("x");
            if (*name == 'b')
                EXPECT_EQ(MessageOf([&] { table.FieldByName("twice")->SetAsString("y"); }),
                          "EDatabaseError: Field 'twice' cannot be modified");
            if (*name == 'c') table.ClearFields();
            table.Post();
            EXPECT_EQ(table.FieldByName("id")->AsInteger(), i);
        }
        if (*name == 'b') EXPECT_EQ(table.FieldByName("twice")->AsString(), "xx");
    }
}

TEST_F(Postgresql, OtherUsersNoticesAreGivenWhenTheyAreAskedFor) {
    AnsiString heard;
    connection.OnNotice = [&](TADOConnection*, const AnsiString& channel, const AnsiString& payload) {
        heard += channel + ":" + payload + ";";
    };
    connection.Listen("Canvis");
    TADOConnection other(nullptr);
    other.SetConnectionString(cluster_->ConnectionString());
    other.Execute("NOTIFY \"Canvis\", 'clients'; NOTIFY other");
    connection.Execute("NOTIFY \"Canvis\", 'my own'");
    connection.CheckNotices();
    EXPECT_EQ(heard, "Canvis:clients;");
    connection.CheckNotices();
    EXPECT_EQ(heard, "Canvis:clients;");
    TADOConnection closed(nullptr);
    closed.CheckNotices();
    EXPECT_FALSE(closed.Connected());
}

TEST_F(Postgresql, AnIdleConnectionIsMadeAgainInSilence) {
    connection.Execute("CREATE TABLE t (a INTEGER)");
    connection.Listen("canvis");
    cluster_->Stop();
    cluster_->Start();
    EXPECT_EQ(Value("SELECT count(*) FROM t"), "0");
    cluster_->Stop();
    cluster_->Start();
    EXPECT_EQ(connection.Execute("INSERT INTO t VALUES (1)"), 1);
    cluster_->Stop();
    cluster_->Start();
    EXPECT_EQ(connection.BeginTrans(), 1);
    connection.RollbackTrans();
    // What was listened to is listened to again.
    AnsiString heard;
    connection.OnNotice = [&](TADOConnection*, const AnsiString& channel, const AnsiString&) { heard += channel; };
    TADOConnection other(nullptr);
    other.SetConnectionString(cluster_->ConnectionString());
    other.Execute("NOTIFY canvis");
    EXPECT_EQ(Value("SELECT 1"), "1");
    connection.CheckNotices();
    EXPECT_EQ(heard, "canvis");
}

TEST_F(Postgresql, ATransactionThatWentWithTheConnectionIsReported) {
    connection.Execute("CREATE TABLE t (a INTEGER)");
    connection.BeginTrans();
    connection.Execute("INSERT INTO t VALUES (1)");
    cluster_->Stop();
    cluster_->Start();
    EXPECT_EQ(MessageOf([&] { connection.Execute("INSERT INTO t VALUES (2)"); }),
              "EDatabaseError: The connection to the database server was lost, and the transaction with it: nothing "
              "that was done in it is kept. It has been made again");
    EXPECT_FALSE(connection.InTransaction());
    EXPECT_EQ(MessageOf([&] { connection.CommitTrans(); }), "EDatabaseError: There is no transaction to commit");
    EXPECT_EQ(Value("SELECT count(*) FROM t"), "0");
}

TEST_F(Postgresql, AServerThatStaysAwayIsReportedAndFoundAgain) {
    connection.Execute("CREATE TABLE t (a INTEGER)");
    cluster_->Stop();
    const AnsiString message = MessageOf([&] { Value("SELECT 1"); });
    EXPECT_EQ(message.substr(0, 65), "EDatabaseError: The connection to the database server is lost: co") << message;
    cluster_->Start();
    EXPECT_EQ(Value("SELECT count(*) FROM t"), "0");
}

TEST_F(Postgresql, ARecordBeingEditedSurvivesTheServer) {
    connection.Execute("CREATE TABLE t (id INTEGER PRIMARY KEY, a TEXT); INSERT INTO t VALUES (1, 'x')");
    TADOTable table(nullptr);
    table.SetConnection(&connection);
    table.SetTableName("t");
    table.Open();
    table.Edit();
    table.FieldByName("a")->SetAsString("typed");
    cluster_->Stop();
    EXPECT_NE(MessageOf([&] { table.Post(); }), "no error");
    EXPECT_EQ(table.State(), dsEdit);
    EXPECT_EQ(table.FieldByName("a")->AsString(), "typed");
    cluster_->Start();
    table.Post();
    EXPECT_EQ(Value("SELECT a FROM t"), "typed");
    table.Edit();
    table.FieldByName("a")->SetAsString("again");
    cluster_->Stop();
    cluster_->Start();
    // What was prepared for the record before is prepared anew.
    table.Post();
    EXPECT_EQ(Value("SELECT a FROM t"), "again");
}

TEST_F(Postgresql, AResultThatWasReadHalfwaySaysThatTheServerWent) {
    const auto query = Query("SELECT i FROM generate_series(1, 100000) AS i");
    cluster_->Stop();
    cluster_->Start();
    const AnsiString message = MessageOf([&] { query->Last(); });
    EXPECT_TRUE(message == kMade ||
                message == "EDatabaseError: The connection to the database server was lost while records were read")
        << message;
    query->Close();
    query->Open();
    query->Last();
    EXPECT_EQ(query->RecNo(), 100000);
}

TEST_F(Postgresql, AStatementThatTheServerBreaksOffSaysSo) {
    EXPECT_EQ(MessageOf([&] { Value("SELECT pg_terminate_backend(pg_backend_pid())"); }), kMade);
    EXPECT_EQ(Value("SELECT 1"), "1");
    EXPECT_EQ(MessageOf([&] { connection.Execute("SELECT pg_terminate_backend(pg_backend_pid())"); }), kMade);
    EXPECT_EQ(Value("SELECT 1"), "1");
}

TEST_F(Postgresql, APreparedStatementFollowsItsTable) {
    connection.Execute("CREATE TABLE t (id SERIAL PRIMARY KEY, a TEXT)");
    TADOTable table(nullptr);
    table.SetConnection(&connection);
    table.SetTableName("t");
    table.Open();
    for (int i = 0; i < 5; ++i) {
        table.Append();
        table.FieldByName("a")->SetAsString("x");
        table.Post();
        if (i == 2) connection.Execute("ALTER TABLE t ALTER COLUMN a TYPE VARCHAR(50)");
    }
    EXPECT_EQ(Value("SELECT count(*) FROM t"), "5");
}

TEST_F(Postgresql, ProceduresAreListed) {
    connection.Execute(
        "CREATE PROCEDURE fes() LANGUAGE SQL AS 'SELECT 1'; CREATE FUNCTION suma(int, int) RETURNS int LANGUAGE SQL AS "
        "'SELECT $1 + $2'");
    TStringList list;
    connection.GetProcedureNames(list);
    EXPECT_EQ(list.CommaText(), "fes,suma");
}
