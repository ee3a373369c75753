#pragma once

#include "datasources/messages.h"
#include "foundation/Uparametres.h"

namespace vyn {

// What answers lookups, whatever it is otherwise: a component of a data-source class, a search screen of the host.
// What goes wrong is raised, and reaches the link that asked. Main thread only.
class LookupAnswers {
  public:
    virtual ~LookupAnswers() = default;
    // Finds the record wanted, whose values are read next.
    virtual bool LocateRecord(const TLocateStruct& wanted) = 0;
    // Has the user choose a record, whose values are read next; false when nothing was chosen.
    virtual bool ChooseRecord(const TLocateStruct& wanted) = 0;
    // Adds the values to a set.
    virtual void ReadValues(TParametres& values) = 0;
    // Takes the values of a set; false when there is no record with them.
    virtual bool WriteValues(TParametres& values) = 0;
    // The edit mask of a value; empty when it has none.
    virtual AnsiString MaskOfValue(const AnsiString& name) = 0;
};

// Answers a message of messages.h; false for any other one, which is left as it is.
bool AnswerLookup(TMessage& message, LookupAnswers& answers);

}  // namespace vyn
