// A lookup over an embedded file: the disk fails at each step of a search, another program holds the file, the file is
// cut short, written over or loses its table between two keystrokes.
#include <filesystem>
#include <fstream>
#include <random>

#include "faults/another.h"
#include "faults/failing_disk.h"
#include "faults/lookups/lookup_fault.h"

namespace faults {

namespace {

std::string BytesOf(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
}

}  // namespace

class FileLookup : public LookupFault {
  protected:
    void Prepare(RunOptions& options) override {
        disk_ = std::make_unique<FailingDisk>();
        LookupFault::Prepare(options);
        options.Database += ";Busy Timeout=0";
        file_ = where_.substr(where_.find("Data Source=") + 12);
    }
    void TearDown() override {
        LookupFault::TearDown();
        disk_.reset();
    }
    // What others change has the engine forget what it has read; the log's changes go into the file.
    void Change() {
        Meanwhile("UPDATE clients SET notes = '" + std::to_string(++changes_) +
                  "' WHERE id = 1; PRAGMA wal_checkpoint(TRUNCATE)");
    }
    void Overwrite(const std::string& bytes, size_t at = 0) {
        std::fstream stream(file_, std::ios::binary | std::ios::in | std::ios::out);
        stream.seekp(static_cast<std::streamoff>(at));
        stream << bytes;
    }
    void ExpectToldAndKept(const std::string& typed, const std::string& record) {
        ExpectToldOnce();
        EXPECT_EQ(Completed(), typed);
        EXPECT_EQ(Record().State, vyncs_available);
        EXPECT_EQ(Buffer(), record);
        ExpectNoSearchLeft();
    }
    void ExpectFoundAgain() {
        Do([&] { TypeInto(Box(), "vidres garc"); });
        Pause();
        EXPECT_EQ(Completed(), "vidres garc|ía");
        EXPECT_TRUE(asked_.empty()) << testing::PrintToString(asked_);
    }

    std::unique_ptr<FailingDisk> disk_;
    std::string file_;
    int changes_ = 0;
};

TEST_P(FileLookup, ADiskThatFailsAnywhereKeepsWhatWasTypedAndTheSearchIsRepeated) {
    Begin();
    constexpr int kMostReads = 200;
    int failures = 0;
    for (const auto duration : {FailingDisk::Duration::Once, FailingDisk::Duration::FromThenOn})
        for (int read = 1; read < kMostReads; ++read) {
            SCOPED_TRACE(read);
            Escape();
            Change();
            const std::string record = Buffer();
            disk_->FailAt(read, FailingDisk::Kind::ReadError, duration);
            TypeAndPause("vidres garc");
            const bool failed = disk_->Failed();
            disk_->Mend();
            if (asked_.empty()) {
                EXPECT_EQ(Completed(), "vidres garc|ía");
            } else {
                ++failures;
                EXPECT_TRUE(failed);
                ExpectToldAndKept("vidres garc", record);
                ExpectFoundAgain();
            }
            if (!failed) break;
        }
    EXPECT_GT(failures, 4);
}

TEST_P(FileLookup, AFileThatIsCutShortBetweenTwoKeystrokesIsToldAndFoundAgain) {
    Begin();
    const std::string record = Buffer();
    TypeAndPause("vid");
    EXPECT_EQ(Completed().substr(0, 6), "vid|re");
    Change();
    const std::string whole = BytesOf(file_);
    constexpr size_t kOnePage = 4096;
    ASSERT_GT(whole.size(), 10 * kOnePage);
    std::filesystem::resize_file(file_, kOnePage);
    TypeAndPause("res garc");
    ExpectToldAndKept("vidres garc", record);
    Overwrite(whole);
    Change();
    ExpectFoundAgain();
}

TEST_P(FileLookup, AFileThatIsWrittenOverBetweenTwoKeystrokesIsToldAndFoundAgain) {
    Begin();
    const std::string record = Buffer();
    std::mt19937 random(20261122);
    for (const size_t at : {size_t{0}, size_t{4096}}) {
        SCOPED_TRACE(at);
        Escape();
        TypeAndPause("vid");
        EXPECT_EQ(Completed().substr(0, 6), "vid|re");
        Change();
        const std::string whole = BytesOf(file_);
        std::string noise(whole.size() - at, ' ');
        for (char& each : noise) each = static_cast<char>(random());
        Overwrite(noise, at);
        TypeAndPause("res garc");
        ExpectToldAndKept("vidres garc", record);
        Overwrite(whole);
        Change();
        ExpectFoundAgain();
    }
}

TEST_P(FileLookup, ATableThatAnotherDroppedIsToldWithTheScreenThatSearchesIt) {
    Begin();
    const std::string record = Buffer();
    const AnsiString table = Utf8ToAnsi(RowsOf("SELECT sql FROM sqlite_master WHERE name = 'clients'").at(0));
    Meanwhile("PRAGMA foreign_keys = OFF; CREATE TABLE kept AS SELECT * FROM clients; DROP TABLE clients");
    TypeAndPause("vidres garc");
    ASSERT_EQ(asked_.size(), 1u) << testing::PrintToString(asked_);
    EXPECT_EQ(asked_.front(), "No es pot cercar a «Cerca de clients»: The statement failed: no such table: clients.");
    asked_.clear();
    EXPECT_EQ(Completed(), "vidres garc");
    EXPECT_EQ(Buffer(), record);
    Meanwhile("PRAGMA foreign_keys = OFF; " + table + "; INSERT INTO clients SELECT * FROM kept");
    ExpectFoundAgain();
}

INSTANTIATE_TEST_SUITE_P(Engines, FileLookup, testing::Values("SQLite"));

// Beside another program.
class SharedFileLookup : public FileLookup {
  protected:
    void Prepare(RunOptions& options) override {
        FileLookup::Prepare(options);
        // It is begun before the file is opened here.
        other_ = std::make_unique<Another>([this](const auto& soFar) {
            soFar();
            sqlite3* database = nullptr;
            const auto run = [&](const char* sql) {
                if (sqlite3_exec(database, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
                    throw std::runtime_error(sqlite3_errmsg(database));
            };
            sqlite3_open(file_.c_str(), &database);
            run("BEGIN EXCLUSIVE; UPDATE clients SET notes = 'theirs' WHERE id = 2");
            soFar();
            run("COMMIT");
            sqlite3_close(database);
        });
    }
    void TearDown() override {
        FileLookup::TearDown();
        other_.reset();
    }

    std::unique_ptr<Another> other_;
};

TEST_P(SharedFileLookup, WhatAnotherProgramWritesIsNotInTheWayOfASearch) {
    Begin();
    other_->GoOn();
    TypeAndPause("vidres garc");
    EXPECT_EQ(Completed(), "vidres garc|ía");
    EXPECT_TRUE(asked_.empty()) << testing::PrintToString(asked_);
    other_->GoOnToTheEnd();
}

TEST_P(SharedFileLookup, AFileWithoutALogThatAnotherProgramHoldsIsToldAndFoundAgain) {
    Begin();
    const std::string record = Buffer();
    Part<TCustomADODataSet>("Consulta").Connection()->Execute("PRAGMA journal_mode = DELETE");
    other_->GoOn();
    TypeAndPause("vidres garc");
    ExpectToldAndKept("vidres garc", record);
    other_->GoOnToTheEnd();
    ExpectFoundAgain();
}

INSTANTIATE_TEST_SUITE_P(Engines, SharedFileLookup, testing::Values("SQLite"));

}  // namespace faults
