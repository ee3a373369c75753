#include "datasources/lookup_answers.h"

namespace vyn {

namespace lookup_answers_detail {

constexpr intptr_t AnswerOf(bool yes) { return yes ? VynAnswerYes : VynAnswerNo; }

bool AnswerRequest(intptr_t request, TParametres& values, LookupAnswers& answers) {
    switch (request) {
        case VynParamsRead:
            answers.ReadValues(values);
            return true;
        case VynParamsWrite:
            return answers.WriteValues(values);
        case VynParamsMasks:
            for (int i = 0; i < values.Count(false); ++i)
                values.SetValue(i, Variant(answers.MaskOfValue(values.GetParamsProps(i).Name)));
            return true;
        default:
            return false;
    }
}

}  // namespace lookup_answers_detail

bool AnswerLookup(TMessage& message, LookupAnswers& answers) {
    using namespace lookup_answers_detail;
    switch (message.Msg) {
        case VYN_MESSAGE_SHOWMODALSEARCH:
        case VYN_MESSAGE_LOCATE: {
            const auto* wanted = reinterpret_cast<const TLocateStruct*>(message.LParam);
            message.Result = VynAnswerNo;
            if (!wanted) return true;
            // The sender may go while the user chooses.
            const TLocateStruct kept = *wanted;
            message.Result =
                AnswerOf(message.Msg == VYN_MESSAGE_LOCATE ? answers.LocateRecord(kept) : answers.ChooseRecord(kept));
            return true;
        }
        case VYN_MESSAGE_TPARAMETRESLIST: {
            auto* values = reinterpret_cast<TParametres*>(message.LParam);
            message.Result = AnswerOf(values && AnswerRequest(message.WParam, *values, answers));
            return true;
        }
        default:
            return false;
    }
}

}  // namespace vyn
