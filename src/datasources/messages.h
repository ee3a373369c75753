#pragma once

#include "platform/objects/type_info.h"
#include "platform/system/messages.h"
#include "platform/values/variant.h"

namespace vyn {

// What the two ends of a lookup say to each other: the links of controls, and the components that answer them (search
// screens of the host, and components of registered data-source classes).

// How a link comes to its value: stored as one byte.
enum class TVynDataLinkType : uint8_t {
    dlt_Field,   // a field of the dataset
    dlt_Search,  // looked up in the search screen that is child number NChild of the data source's node
    dlt_Class,   // looked up in a component of the data-source class ChildClassName
};
using enum TVynDataLinkType;
const EnumType& TypeInfoOf(TypeTag<TVynDataLinkType>);

// How a host is asked to open a form; for hosts.
enum class TVynOpenFormStyle : uint8_t { ofs_Normal, ofs_Edit, ofs_Add, ofs_Delete, ofs_Search };
using enum TVynOpenFormStyle;
const EnumType& TypeInfoOf(TypeTag<TVynOpenFormStyle>);

// How far a looked-up component is. A search ends in vyncs_available again, or in vyncs_Nil when its component went.
enum class TVynComponentState : uint8_t { vyncs_Nil, vyncs_Creating, vyncs_Searching, vyncs_available };
using enum TVynComponentState;
const EnumType& TypeInfoOf(TypeTag<TVynComponentState>);

// Shows the component's search screen modally. WParam 4; LParam a TLocateStruct*: FieldName what is shown to the user,
// Value what was typed, First whether it was typed since the value was last shown. -1 when something was chosen, else
// 0.
constexpr uint32_t VYN_MESSAGE_SHOWMODALSEARCH = 4104;
// WParam a request (below), LParam a TParametres*. -1 for a known request, 0 for any other.
constexpr uint32_t VYN_MESSAGE_TPARAMETRESLIST = 4109;
// WParam 4; LParam a TLocateStruct*. -1 when the record was found. Background searches set First and Third.
constexpr uint32_t VYN_MESSAGE_LOCATE = 4110;

// What senders put into WParam of the messages that carry a TLocateStruct: a boolean, any value but 0.
constexpr intptr_t VynLocateWParam = 4;

// Requests of VYN_MESSAGE_TPARAMETRESLIST.
constexpr intptr_t VynParamsRead = 1;   // load the current values, and copy them into the set
constexpr intptr_t VynParamsWrite = 2;  // take the set's values
constexpr intptr_t VynParamsMasks = 3;  // put the edit mask of each name of the set into it

// Answers.
constexpr intptr_t VynAnswerYes = -1;
constexpr intptr_t VynAnswerNo = 0;

struct TLocateStruct {
    AnsiString FieldName;
    Variant Value;
    // The modified flag of a modal search; set by background searches.
    bool First = false;
    // The extra flag of a modal search. In a background search: what is looked up may have changed, and is to be read
    // again first.
    bool Second = false;
    // Always set: the sender is a link, which reads the values of the record found right afterwards.
    bool Third = false;
};

}  // namespace vyn
