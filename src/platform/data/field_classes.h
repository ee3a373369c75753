#pragma once

#include <memory>

#include "platform/data/fields.h"

namespace vyn {

class TStringField : public TField {
    VYN_OBJECT
  public:
    explicit TStringField(TComponent* owner) : TStringField(owner, ftString) {}
    bool FixedChar = false;
    bool Transliterate = true;

  protected:
    static constexpr int kUsualSize = 20;
    TStringField(TComponent* owner, TFieldType type) : TField(owner, type, kUsualSize) {}
};

class TWideStringField : public TStringField {
    VYN_OBJECT
  public:
    explicit TWideStringField(TComponent* owner) : TStringField(owner, ftWideString) {}
};

// Numbers: they stand right, and have formats for being shown and edited.
class TNumericField : public TField {
    VYN_OBJECT
  public:
    explicit TNumericField(TComponent* owner) : TField(owner) {}
    bool IsNumeric() const override { return true; }
    bool IsValidChar(char c) const override;

  protected:
    using TField::TField;
    virtual bool TakesFractions() const { return true; }
};

// Whole numbers of 32 bits; a range of 0 to 0 is none.
class TIntegerField : public TNumericField {
    VYN_OBJECT
  public:
    explicit TIntegerField(TComponent* owner) : TIntegerField(owner, ftInteger) {}
    int32_t MaxValue = 0;
    int32_t MinValue = 0;

  protected:
    TIntegerField(TComponent* owner, TFieldType type) : TNumericField(owner, type) {}
    bool TakesFractions() const override { return false; }
    void CheckRange(const Cell& value) const override;
};

class TSmallintField : public TIntegerField {
    VYN_OBJECT
  public:
    explicit TSmallintField(TComponent* owner) : TIntegerField(owner, ftSmallint) {}
};

class TWordField : public TIntegerField {
    VYN_OBJECT
  public:
    explicit TWordField(TComponent* owner) : TIntegerField(owner, ftWord) {}
};

class TAutoIncField : public TIntegerField {
    VYN_OBJECT
  public:
    explicit TAutoIncField(TComponent* owner) : TIntegerField(owner, ftAutoInc) {}
};

class TLargeintField : public TNumericField {
    VYN_OBJECT
  public:
    explicit TLargeintField(TComponent* owner) : TNumericField(owner, ftLargeint) {}
    int64_t MaxValue = 0;
    int64_t MinValue = 0;

  protected:
    bool TakesFractions() const override { return false; }
    void CheckRange(const Cell& value) const override;
};

// A range of 0 to 0 is none; Precision is the number of digits that are shown without a format.
class TFloatField : public TNumericField {
    VYN_OBJECT
  public:
    explicit TFloatField(TComponent* owner) : TFloatField(owner, ftFloat) {}
    double MaxValue = 0;
    double MinValue = 0;
    int32_t Precision = 15;

  protected:
    TFloatField(TComponent* owner, TFieldType type) : TNumericField(owner, type) {}
    void CheckRange(const Cell& value) const override;
};

class TCurrencyField : public TFloatField {
    VYN_OBJECT
  public:
    explicit TCurrencyField(TComponent* owner);

  protected:
    void CheckRange(const Cell& value) const override;
};

// Decimals, kept exactly to the fourth.
class TBCDField : public TNumericField {
    VYN_OBJECT
  public:
    explicit TBCDField(TComponent* owner) : TNumericField(owner, ftBCD, kUsualDecimals) {}
    Currency MaxValue;
    Currency MinValue;
    int32_t Precision = 0;

  protected:
    static constexpr int kUsualDecimals = 4;
    void CheckRange(const Cell& value) const override;
};

class TBooleanField : public TField {
    VYN_OBJECT
  public:
    explicit TBooleanField(TComponent* owner) : TField(owner, ftBoolean) {}
};

class TDateTimeField : public TField {
    VYN_OBJECT
  public:
    explicit TDateTimeField(TComponent* owner) : TField(owner, ftDateTime) {}
    bool IsDateTime() const override { return true; }

  protected:
    using TField::TField;
};

class TDateField : public TDateTimeField {
    VYN_OBJECT
  public:
    explicit TDateField(TComponent* owner) : TDateTimeField(owner, ftDate) {}
};

class TTimeField : public TDateTimeField {
    VYN_OBJECT
  public:
    explicit TTimeField(TComponent* owner) : TDateTimeField(owner, ftTime) {}
};

class TStream;
class TMemoryStream;

// Long values: bytes, texts, pictures. Texts are streamed as Windows-1252.
class TBlobField : public TField {
    VYN_OBJECT
  public:
    explicit TBlobField(TComponent* owner) : TField(owner, ftBlob) {}
    TFieldType BlobType() const { return DataType(); }
    void SetBlobType(TFieldType type) { SetDataType(type); }
    int64_t BlobSize() const;
    // From where the stream stands to its end, and all of it. Raise what streams and files raise.
    void LoadFromStream(TStream& stream);
    void SaveToStream(TStream& stream) const;
    void LoadFromFile(const AnsiString& fileName);
    void SaveToFile(const AnsiString& fileName) const;
    // The value, to be read.
    std::unique_ptr<TMemoryStream> CreateBlobStream() const;

  protected:
    using TField::TField;
};

class TMemoField : public TBlobField {
    VYN_OBJECT
  public:
    explicit TMemoField(TComponent* owner) : TBlobField(owner, ftMemo) {}
    bool Transliterate = true;
};

class TGraphicField : public TBlobField {
    VYN_OBJECT
  public:
    explicit TGraphicField(TComponent* owner) : TBlobField(owner, ftGraphic) {}
};

// The class of field that a type makes.
TClass FieldClassOf(TFieldType type);

}  // namespace vyn
