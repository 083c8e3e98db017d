#include "host/run/PlayEffects.hpp"

namespace vigil {

PlayEffect playEffect(const PlayEnd& end) {
    switch (end.outcome) {
        case PlayOutcome::Finished:
            return {"succeeded", end.detail, false};
        case PlayOutcome::Cut:
            return {"interrupted", end.detail, true};
        case PlayOutcome::Shortened:
            return {"cut", end.detail, true};
        case PlayOutcome::TimedOut:
            return {"timed out", end.detail, true};
        case PlayOutcome::NothingToSay:
        case PlayOutcome::NotPlayable:
        case PlayOutcome::NoDevice:
        case PlayOutcome::NoProgram:
        case PlayOutcome::Failed:
            break;
    }
    return {"failed", end.detail, true};
}

}  // namespace vigil
