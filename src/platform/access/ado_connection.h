#pragma once

#include "platform/access/provider.h"
#include "platform/objects/component.h"
#include "platform/objects/strings.h"

namespace vyn {

class TCustomADODataSet;

enum class TXactAttribute { xaCommitRetaining, xaAbortRetaining };
using enum TXactAttribute;
using TXactAttributes = Set<TXactAttribute>;
const EnumType& TypeInfoOf(TypeTag<TXactAttribute>);

enum class TConnectOption { coConnectUnspecified, coAsyncConnect };
using enum TConnectOption;
const EnumType& TypeInfoOf(TypeTag<TConnectOption>);

enum class TCursorLocation { clUseServer, clUseClient };
using enum TCursorLocation;
const EnumType& TypeInfoOf(TypeTag<TCursorLocation>);

enum class TIsolationLevel {
    ilUnspecified,
    ilChaos,
    ilReadUncommitted,
    ilBrowse,
    ilCursorStability,
    ilReadCommitted,
    ilRepeatableRead,
    ilSerializable,
    ilIsolated,
};
using enum TIsolationLevel;
const EnumType& TypeInfoOf(TypeTag<TIsolationLevel>);

enum class TConnectMode {
    cmUnknown,
    cmRead,
    cmWrite,
    cmReadWrite,
    cmShareDenyRead,
    cmShareDenyWrite,
    cmShareExclusive,
    cmShareDenyNone,
};
using enum TConnectMode;
const EnumType& TypeInfoOf(TypeTag<TConnectMode>);

// A connection to a database through a provider. Opened when it is first needed; closing it closes its datasets and
// takes back an open transaction.
class TADOConnection : public TComponent {
    VYN_OBJECT
  public:
    static constexpr int32_t kDefaultCommandTimeout = 30;  // seconds

    explicit TADOConnection(TComponent* owner) : TComponent(owner) {}
    ~TADOConnection() override;

    const AnsiString& ConnectionString() const { return connectionString_; }
    // Raises EDatabaseError while connected.
    void SetConnectionString(const AnsiString& value);
    bool Connected() const { return connection_ != nullptr; }
    // While the form is being read, connecting waits until it is loaded.
    void SetConnected(bool value);
    void Open() { SetConnected(true); }
    void Close() { SetConnected(false); }
    // The provider's name and the mode count where the connection string says neither.
    const AnsiString& ProviderName() const { return providerName_; }
    void SetProviderName(const AnsiString& value);
    TConnectMode Mode() const { return mode_; }
    void SetMode(TConnectMode value);
    bool LoginPrompt = true;
    bool KeepConnection = true;
    TXactAttributes Attributes;
    // Seconds; 0: without end. The connection string's own Command Timeout and Connect Timeout count more.
    int32_t CommandTimeout = kDefaultCommandTimeout;
    int32_t ConnectionTimeout = 15;
    TConnectOption ConnectOptions = coConnectUnspecified;
    TCursorLocation CursorLocation = clUseClient;
    AnsiString DefaultDatabase;
    TIsolationLevel IsolationLevel = ilCursorStability;

    // Runs statements that give no rows; gives the number of rows that changed. Connects when needed.
    int64_t Execute(const AnsiString& sql);
    // Transactions; a transaction in a transaction is a part of it that can be taken back by itself. BeginTrans gives
    // the depth; ending one that was not begun raises EDatabaseError.
    int BeginTrans();
    void CommitTrans();
    void RollbackTrans();
    bool InTransaction() const { return connection_ && connection_->TransactionDepth() > 0; }
    void GetTableNames(TStrings& list, bool systemTables = false);
    void GetProcedureNames(TStrings& list);
    // The provider's connection, made when it is not there; what it is asked for may take the time that the connection
    // allows, or `commandTimeout` seconds where a dataset has a time of its own.
    ProviderConnection& Provider(int32_t commandTimeout = kDefaultCommandTimeout);
    // Before something is written: where results that are read halfway stand in the way, every dataset fetches the
    // rest.
    void FinishReading();

    // Notices that users of a database send each other, a sign to refresh what is shown, where the engine has such
    // (raises EDatabaseError where it has not). CheckNotices, called now and then (by a timer), takes those that came
    // on the channels listened to and gives each to OnNotice.
    void Listen(const AnsiString& channel);
    void CheckNotices();
    Event<void(TADOConnection* Sender, const AnsiString& Channel, const AnsiString& Payload)> OnNotice;

    TNotifyEvent BeforeConnect;
    TNotifyEvent AfterConnect;
    TNotifyEvent BeforeDisconnect;
    TNotifyEvent AfterDisconnect;

    void Loaded() override;

  private:
    friend class TCustomADODataSet;
    static constexpr int32_t kNoTimeout = -1;
    void CheckClosed() const;
    void FetchRest();
    AnsiString FullConnectionString() const;

    AnsiString connectionString_;
    AnsiString providerName_;
    TConnectMode mode_ = cmUnknown;
    std::unique_ptr<ProviderConnection> connection_;
    int32_t ownCommandTimeout_ = kNoTimeout;  // the connection string's
    std::vector<TCustomADODataSet*> dataSets_;
    bool connectWhenLoaded_ = false;
};

}  // namespace vyn
