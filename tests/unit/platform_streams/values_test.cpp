#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <filesystem>
#include <limits>

#include "unit/platform_streams/fixtures.h"

using namespace stream_fixtures;

namespace {

std::string BytesOf(const std::function<void(TWriter&)>& write) {
    TMemoryStream stream;
    TWriter writer(stream);
    write(writer);
    writer.Flush();
    return std::string(stream.Bytes());
}

// A stream that shows no memory, so that the reader buffers; gives few bytes at a time.
class TrickleStream : public TStream {
  public:
    explicit TrickleStream(std::string bytes) : bytes_(std::move(bytes)) {}
    int64_t Read(void* buffer, int64_t count) override {
        const int64_t taken = std::min<int64_t>({count, 3, Size() - at_});
        std::memcpy(buffer, bytes_.data() + at_, static_cast<size_t>(taken));
        at_ += taken;
        return taken;
    }
    int64_t Write(const void*, int64_t) override { return 0; }
    int64_t Seek(int64_t offset, TSeekOrigin origin) override {
        return at_ = origin == soFromBeginning ? offset : origin == soFromCurrent ? at_ + offset : Size() + offset;
    }
    int64_t Size() const override { return static_cast<int64_t>(bytes_.size()); }
    void SetSize(int64_t) override {}

  private:
    std::string bytes_;
    int64_t at_ = 0;
};

}  // namespace

TEST(ValueWriter, IntegersTakeTheShortestCode) {
    const auto hex = [](int64_t value) { return Hex(BytesOf([&](TWriter& w) { w.WriteInteger(value); })); };
    EXPECT_EQ(hex(0), "02 00");
    EXPECT_EQ(hex(-128), "02 80");
    EXPECT_EQ(hex(127), "02 7F");
    EXPECT_EQ(hex(128), "03 80 00");
    EXPECT_EQ(hex(-129), "03 7F FF");
    EXPECT_EQ(hex(-32768), "03 00 80");
    EXPECT_EQ(hex(32768), "04 00 80 00 00");
    EXPECT_EQ(hex(INT32_MIN), "04 00 00 00 80");
    EXPECT_EQ(hex(int64_t{INT32_MAX} + 1), "13 00 00 00 80 00 00 00 00");
}

TEST(ValueWriter, StringsTakeTheShortCodeUpTo255Bytes) {
    EXPECT_EQ(Hex(BytesOf([](TWriter& w) { w.WriteString("Ab"); })), "06 02 41 62");
    EXPECT_EQ(Hex(BytesOf([](TWriter& w) { w.WriteString(std::string(255, 'x')); }).substr(0, 3)), "06 FF 78");
    EXPECT_EQ(Hex(BytesOf([](TWriter& w) { w.WriteString(std::string(256, 'x')); }).substr(0, 6)), "0C 00 01 00 00 78");
}

TEST(ValueWriter, EveryOtherValueHasItsCode) {
    EXPECT_EQ(Hex(BytesOf([](TWriter& w) { w.WriteFloat(1.5L); })), "05 00 00 00 00 00 00 00 C0 FF 3F");
    EXPECT_EQ(Hex(BytesOf([](TWriter& w) { w.WriteSingle(1.5f); })), "0F 00 00 C0 3F");
    EXPECT_EQ(Hex(BytesOf([](TWriter& w) { w.WriteCurrency(Currency(1.5)); })), "10 98 3A 00 00 00 00 00 00");
    EXPECT_EQ(Hex(BytesOf([](TWriter& w) { w.WriteDate(TDateTime(2.0)); })), "11 00 00 00 00 00 00 00 40");
    EXPECT_EQ(Hex(BytesOf([](TWriter& w) { w.WriteIdent("NULL"); })), "07 04 4E 55 4C 4C");
    EXPECT_EQ(Hex(BytesOf([](TWriter& w) { w.WriteIdent("True"); })), "07 04 54 72 75 65");
    EXPECT_EQ(Hex(BytesOf([](TWriter& w) {
                  w.WriteBoolean(false);
                  w.WriteBoolean(true);
              })),
              "08 09");
    EXPECT_EQ(Hex(BytesOf([](TWriter& w) { w.WriteWideString(u"a\u20AC"); })), "12 02 00 00 00 61 00 AC 20");
    EXPECT_EQ(Hex(BytesOf([](TWriter& w) { w.WriteBinary("\x01\x02"); })), "0A 02 00 00 00 01 02");
    EXPECT_EQ(Hex(BytesOf([](TWriter& w) {
                  w.WriteListBegin();
                  w.WriteListEnd();
              })),
              "01 00");
}

TEST(ValueWriter, ANameLongerThanItsLengthByteIsRefused) {
    TMemoryStream stream;
    TWriter writer(stream);
    EXPECT_THROW(writer.WriteIdent(std::string(256, 'a')), EWriteError);
}

TEST(ValueReader, ReadsBackWhatWasWrittenFromMemoryAndThroughABuffer) {
    const std::string bytes = BytesOf([](TWriter& w) {
        w.WriteInteger(7);
        w.WriteInteger(-30000);
        w.WriteInteger(int64_t{1} << 40);
        w.WriteFloat(0.1L);
        w.WriteSingle(2.5f);
        w.WriteCurrency(Currency::FromScaled(-12345));
        w.WriteDate(TDateTime(46000.25));
        w.WriteString(std::string(300, 'q'));
        w.WriteWideString(u"\u20AC");
        w.WriteIdent("Abc");
        w.WriteBoolean(true);
        w.WriteBinary("xyz");
    });
    TMemoryStream memory(bytes);
    TrickleStream trickle(bytes);
    for (TStream* stream : std::initializer_list<TStream*>{&memory, &trickle}) {
        TReader reader(*stream, 4);
        EXPECT_EQ(reader.ReadInteger(), 7);
        EXPECT_EQ(reader.ReadInteger(), -30000);
        EXPECT_EQ(reader.ReadInt64(), int64_t{1} << 40);
        EXPECT_EQ(reader.ReadFloat(), 0.1L);
        EXPECT_EQ(reader.ReadSingle(), 2.5f);
        EXPECT_EQ(reader.ReadCurrency().Val, -12345);
        EXPECT_EQ(reader.ReadDate().Val, 46000.25);
        EXPECT_EQ(reader.ReadString(), std::string(300, 'q'));
        EXPECT_EQ(reader.ReadString(), "\x80");
        EXPECT_EQ(reader.ReadIdent(), "Abc");
        EXPECT_TRUE(reader.ReadBoolean());
        EXPECT_EQ(reader.ReadBinaryView(), "xyz");
        EXPECT_EQ(reader.BytesLeft(), 0);
    }
}

TEST(ValueReader, LeavesTheStreamRightAfterWhatItConsumed) {
    const std::string bytes = BytesOf([](TWriter& w) {
        w.WriteInteger(1);
        w.WriteInteger(2);
    });
    TMemoryStream memory(bytes);
    TrickleStream trickle(bytes);
    for (TStream* stream : std::initializer_list<TStream*>{&memory, &trickle}) {
        { TReader(*stream).ReadInteger(); }
        EXPECT_EQ(stream->Position(), 2);
        EXPECT_EQ(TReader(*stream).ReadInteger(), 2);
    }
}

TEST(ValueReader, ViewsPointIntoTheStreamsMemory) {
    TMemoryStream memory(BytesOf([](TWriter& w) { w.WriteString("hello"); }));
    TReader reader(memory);
    ASSERT_TRUE(reader.KeepsViews());
    const std::string_view view = reader.ReadStringView();
    EXPECT_EQ(view.data(), memory.Bytes().data() + 2);
}

TEST(ValueReader, AnotherTypeThanAskedForIsNamedWithItsPosition) {
    TMemoryStream memory(Unhex("02 05 06 01 41"));
    TReader reader(memory);
    reader.ReadInteger();
    EXPECT_EQ(MessageOf([&] { reader.ReadInteger(); }),
              "EReadError: Invalid property value: an integer was expected, a string was found (memory, position 2)");
}

TEST(ValueReader, AnUnknownTypeIsNamed) {
    TMemoryStream memory(Unhex("63"));
    TReader reader(memory);
    EXPECT_EQ(MessageOf([&] { reader.SkipValue(); }),
              "EReadError: Invalid property value: a value was expected, value type 99 was found (memory, position 0)");
}

TEST(ValueReader, ALengthBeyondTheEndIsRefusedBeforeAnythingIsTaken) {
    for (const char* hex : {"0C FF FF FF FF 41", "0A FF FF FF 7F", "12 FF FF FF FF 00 00", "06 09 41", "07 FF"}) {
        TMemoryStream memory(Unhex(hex));
        TReader reader(memory);
        EXPECT_THROW(reader.SkipValue(), EReadError) << hex;
    }
    TMemoryStream memory(Unhex("0C FF FF FF 7F 41"));
    TReader reader(memory);
    EXPECT_EQ(MessageOf([&] { reader.ReadString(); }),
              "EReadError: Stream read error: a length of 2147483647 with 1 bytes left (memory, position 5)");
}

TEST(ValueReader, EveryTruncationOfAStreamIsAnError) {
    const std::string bytes = BytesOf([](TWriter& w) {
        w.WriteListBegin();
        w.WriteInteger(70000);
        w.WriteFloat(1.0L);
        w.WriteString("abc");
        w.WriteListEnd();
    });
    for (size_t length = 0; length < bytes.size(); ++length) {
        TMemoryStream memory(bytes.substr(0, length));
        TReader reader(memory);
        EXPECT_THROW(reader.SkipValue(), EReadError) << length;
    }
}

TEST(ValueReader, TooDeepNestingIsRefused) {
    TMemoryStream memory(std::string(10000, '\x01'));
    TReader reader(memory);
    EXPECT_EQ(MessageOf([&] { reader.SkipValue(); }),
              "EReadError: Stream read error: more than 1000 levels (memory, position 1001)");
}

TEST(ValueReader, AnIntegerThatIsTooLargeIsRefused) {
    TMemoryStream memory(Unhex("13 00 00 00 80 00 00 00 00"));
    TReader reader(memory);
    EXPECT_THROW(reader.ReadInteger(), EReadError);
}

TEST(ValueReader, SkipsEveryKindOfValue) {
    const std::string bytes = BytesOf([](TWriter& w) {
        w.WriteNull();
        w.WriteNil();
        w.WriteFloat(1);
        w.WriteSingle(1);
        w.WriteCurrency(Currency(1.0));
        w.WriteDate(TDateTime(1));
        w.WriteSet(5, TypeInfoOf(TypeTag<TMood>{}));
        w.WriteWideString(u"abc");
        w.WriteBinary("12345");
        w.WriteValue(vaCollection);
        w.WriteInteger(3);
        w.WriteListBegin();
        w.WriteName("P");
        w.WriteInteger(1);
        w.WriteName("");
        w.WriteListEnd();
        w.WriteString("last");
    });
    TrickleStream stream(bytes);
    TReader reader(stream);
    for (int i = 0; i < 10; ++i) reader.SkipValue();
    EXPECT_EQ(reader.ReadString(), "last");
}

TEST(MemoryStream, GrowsReadsSeeksAndCopies) {
    TMemoryStream stream;
    stream.WriteBuffer("hello world", 11);
    stream.SetPosition(6);
    char buffer[6] = {};
    EXPECT_EQ(stream.Read(buffer, 100), 5);
    EXPECT_STREQ(buffer, "world");
    stream.Seek(-5, soFromEnd);
    stream.WriteBuffer("W", 1);
    TMemoryStream copy;
    EXPECT_EQ(copy.CopyFrom(stream, 0), 11);
    EXPECT_EQ(copy.Bytes(), "hello World");
    stream.SetSize(5);
    EXPECT_EQ(stream.Bytes(), "hello");
    stream.SetPosition(8);
    stream.WriteBuffer("!", 1);
    EXPECT_EQ(stream.Bytes(), std::string_view("hello\0\0\0!", 9));
    EXPECT_THROW(stream.ReadBuffer(buffer, 1), EReadError);
}

TEST(MemoryStream, KeepsItsBytesWhileItGrowsThroughLargeBlocks) {
    constexpr int kPart = 100003;  // no divisor of any block's size
    constexpr int kParts = 300;
    TMemoryStream stream;
    const auto part = [](int number) { return std::string(kPart, static_cast<char>(number)); };
    for (int i = 0; i < kParts; ++i) stream.WriteBuffer(part(i).data(), kPart);
    ASSERT_EQ(stream.Size(), int64_t{kPart} * kParts);
    for (int i = 0; i < kParts; ++i)
        ASSERT_EQ(stream.Bytes().substr(static_cast<size_t>(i) * kPart, kPart), part(i)) << i;
    stream.SetSize(10);
    EXPECT_EQ(stream.Bytes(), std::string(10, '\0'));
    stream.Clear();
    EXPECT_EQ(stream.Size(), 0);
    stream.WriteBuffer("abc", 3);
    EXPECT_EQ(stream.Bytes(), "abc");
}

TEST(MemoryStream, WhatIsReservedIsNotYetThere) {
    TMemoryStream stream("abc");
    stream.Reserve(int64_t{20} * 1024 * 1024);
    EXPECT_EQ(stream.Bytes(), "abc");
    stream.SetSize(int64_t{8} * 1024 * 1024);
    EXPECT_EQ(stream.Bytes().substr(0, 4), std::string("abc\0", 4));
    EXPECT_EQ(stream.Bytes().find_first_not_of('\0', 3), std::string_view::npos);
}

TEST(MemoryStream, MemoryThatCannotBeHadIsAnErrorAndKeepsTheBytes) {
    TMemoryStream stream("abc");
    EXPECT_THROW(stream.Reserve(int64_t{1} << 60), EOutOfResources);
    EXPECT_EQ(stream.Bytes(), "abc");
}

TEST(ValueWriter, AManyTimesFilledBufferLosesNothing) {
    std::string expected;
    TMemoryStream stream;
    {
        TWriter writer(stream, 16);
        for (int i = 0; i < 200000; ++i) {
            ASSERT_EQ(writer.Position(), static_cast<int64_t>(expected.size()));
            writer.WriteString("ab");
            expected += std::string(
                "\x06\x02"
                "ab");
        }
    }
    EXPECT_EQ(stream.Bytes(), expected);
}

TEST(FileStream, ReadsBackWhatItWroteAndNamesWhatItCannotOpen) {
    const std::string folder = testing::TempDir() + "vyn-streams/";
    std::filesystem::create_directories(folder);
    {
        TFileStream file(folder + "a.bin", fmCreate);
        file.WriteBuffer("abc", 3);
    }
    TFileStream file(folder + "a.bin", fmOpenRead);
    EXPECT_EQ(file.Size(), 3);
    EXPECT_EQ(MessageOf([&] { TFileStream(folder + "none", fmOpenRead); }),
              "EFOpenError: Cannot open file " + folder + "none. No such file or directory");
    EXPECT_EQ(MessageOf([&] { TFileStream(folder + "no/such", fmCreate); }),
              "EFCreateError: Cannot create file " + folder + "no/such. No such file or directory");
    EXPECT_EQ(MessageOf([&] { TFileStream(folder, fmOpenRead); }),
              "EFOpenError: Cannot open file " + folder + ". It is a folder");
}

TEST(FileStream, RoomReservedAheadIsGivenBack) {
    const std::string name = std::string(::testing::TempDir()) + "vyn_reserve.bin";
    const std::string piece(1024 * 1024, 'x');
    const auto roomTaken = [&] {
        struct stat about {};
        EXPECT_EQ(::stat(name.c_str(), &about), 0);
        return static_cast<int64_t>(about.st_blocks) * 512;
    };
    const int64_t allowed = 3 * 1024 * 1024;  // the file's two pieces and what a file system adds
    {
        TFileStream file(name, fmCreate);
        file.WriteBuffer(piece.data(), static_cast<int64_t>(piece.size()));
        file.WriteBuffer(piece.data(), static_cast<int64_t>(piece.size()));
        EXPECT_EQ(file.Size(), 2 * 1024 * 1024) << "the reserve is no part of the file";
        file.Synchronize();
        EXPECT_LE(roomTaken(), allowed);
        file.SetPosition(1);  // into the middle, and past the end again
        file.WriteBuffer(piece.data(), static_cast<int64_t>(piece.size()));
        EXPECT_EQ(file.Size(), 2 * 1024 * 1024);
    }
    EXPECT_LE(roomTaken(), allowed);
    EXPECT_EQ(std::filesystem::file_size(name), 2u * 1024 * 1024);
    std::filesystem::remove(name);
}

TEST(FileStream, AFailedAtomicWriteLeavesTheOldFileAndNothingElse) {
    const std::string folder = testing::TempDir() + "vyn-atomic/";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    WriteFileAtomically(folder + "f", [](TStream& s) { s.WriteBuffer("old", 3); });
    EXPECT_THROW(WriteFileAtomically(folder + "f",
                                     [](TStream& s) {
                                         s.WriteBuffer("new", 3);
                                         throw EWriteError("disk full");
                                     }),
                 EWriteError);
    TMemoryStream back;
    back.LoadFromFile(folder + "f");
    EXPECT_EQ(back.Bytes(), "old");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1);
    WriteFileAtomically(folder + "f", [](TStream& s) { s.WriteBuffer("newer", 5); });
    back.LoadFromFile(folder + "f");
    EXPECT_EQ(back.Bytes(), "newer");
}

TEST(FileStream, AMappedFileIsSeenAsMemory) {
    const std::string name = testing::TempDir() + "vyn-mapped.bin";
    WriteFileAtomically(name, [](TStream& s) { s.WriteBuffer("mapped", 6); });
    TMappedFileStream file(name);
    EXPECT_EQ(file.MemoryView(), "mapped");
    EXPECT_THROW(file.Write("x", 1), EWriteError);
    WriteFileAtomically(name, [](TStream&) {});
    TMappedFileStream empty(name);
    EXPECT_EQ(empty.Size(), 0);
}
