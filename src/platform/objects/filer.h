#pragma once

#include <functional>
#include <vector>

#include "platform/text/ansi_string.h"

namespace vyn {

class TComponent;
class TPersistent;
class TReader;
class TStream;
class TWriter;

// What storing and reading look like from an object: a place to say which values it has beyond its published
// properties. TReader and TWriter (platform/streams) are the two filers.
class TFiler {
  public:
    using ReadData = std::function<void(TReader&)>;
    using WriteData = std::function<void(TWriter&)>;

    virtual ~TFiler() = default;

    // A hidden property in the value encoding. A reader calls `read` when the stream holds the name; a writer
    // calls `write` when hasData.
    virtual void DefineProperty(const AnsiString& name, const ReadData& read, const WriteData& write, bool hasData) = 0;
    // A hidden property of plain bytes.
    virtual void DefineBinaryProperty(const AnsiString& name, const std::function<void(TStream&)>& read,
                                      const std::function<void(TStream&)>& write, bool hasData) = 0;
    // The two shapes that the classes of this room need, so that they need not know the encoding.
    virtual void DefineIntegerProperty(const AnsiString& name, const std::function<void(int)>& set, int value,
                                       bool hasData) = 0;
    virtual void DefineStringListProperty(const AnsiString& name,
                                          const std::function<void(std::vector<AnsiString>)>& set,
                                          const std::function<std::vector<AnsiString>()>& get, bool hasData) = 0;

    // Reads (or writes) the properties and children of a component; what TComponent::ReadState and WriteState do.
    virtual void FileComponentData(TComponent& component) = 0;

    virtual bool IsReader() const = 0;
    // The component that the stream is about; names are looked up among what it owns.
    TComponent* Root = nullptr;
    // While an inherited form is written: the object to compare with; null otherwise.
    TPersistent* Ancestor = nullptr;
    bool IgnoreChildren = false;
    // A writer that stores values equal to their defaults too, and empty lists.
    bool StoreDefaults = false;
};

}  // namespace vyn
