#include "faults/user.h"

#include <grp.h>
#include <pwd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <iostream>

#include "platform/text/exceptions.h"

namespace faults {

testing::AssertionResult Says(const AnsiString& message, const AnsiString& sentence) {
    if (message.find(sentence) != AnsiString::npos) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "\"" << message << "\" does not say \"" << sentence << "\"";
}

User::User(const AnsiString& where, int commandTimeout) {
    connection.SetConnectionString(where);
    table.SetConnection(&connection);
    table.CommandTimeout = commandTimeout;
    table.SetTableName("clients");
    table.SetIndexFieldNames("id");
    table.Open();
}

void User::Type(const AnsiString& nota) {
    table.Edit();
    table.FieldByName("nota")->SetAsString(nota);
}

void User::TypeNew(int id, const AnsiString& nota) {
    table.Append();
    table.FieldByName("id")->SetAsInteger(id);
    table.FieldByName("nom")->SetAsString("new");
    table.FieldByName("nota")->SetAsString(nota);
}

AnsiString User::Post() {
    return MessageOf([&] { table.Post(); });
}

void User::ExpectTyped(const AnsiString& nota, TDataSetState state) {
    EXPECT_EQ(table.State(), state);
    EXPECT_TRUE(table.Modified());
    EXPECT_EQ(table.FieldByName("nota")->AsString(), nota);
}

AnsiString User::Value(const AnsiString& sql) {
    TADOQuery query(nullptr);
    query.SetConnection(&connection);
    query.SQL()->SetText(sql);
    query.Open();
    return query.Fields(0)->AsString();
}

void MakeClients(const AnsiString& where, int records) {
    TADOConnection connection(nullptr);
    connection.SetConnectionString(where);
    connection.Execute("CREATE TABLE clients (id INTEGER NOT NULL PRIMARY KEY, nom VARCHAR(40), nota TEXT)");
    connection.BeginTrans();
    for (int i = 1; i <= records; ++i) {
        const std::string number = std::to_string(i);
        connection.Execute("INSERT INTO clients VALUES (" + number + ", 'nom " + number + "', 'nota " + number + "')");
    }
    connection.CommitTrans();
}

int InAnotherProcess(const std::function<void()>& action) {
    std::cout.flush();
    fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        try {
            action();
        } catch (const std::exception& error) {
            std::cerr << "in another process: " << error.what() << std::endl;
            _exit(2);
        }
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}

int AsOrdinaryUser(const std::function<void()>& action) {
    return InAnotherProcess([&] {
        if (geteuid() == 0) {
            const passwd* user = getpwnam("nobody");
            if (!user || setgroups(0, nullptr) != 0 || setgid(user->pw_gid) != 0 || setuid(user->pw_uid) != 0)
                _exit(126);
        }
        action();
    });
}

}  // namespace faults
