#ifndef FUZZ_STORY_H
#define FUZZ_STORY_H

#include <string>

#include "byte_reader.h"
#include "fuzzed_service.h"

namespace fuzz {

/// A story about a watch, told by an input. One process of the service follows the other; in each, one event follows
/// the other.
class Story {
public:
    explicit Story(ByteReader bytes) : bytes_(bytes) {}

    /// Plays the whole story. Requires after each event that the service holds nothing of the platform's.
    void play();

    /// Requires that once nothing fails any more, the next start finds a sound database and enforces what is stored,
    /// and that the policy of a new account is stored and enforced.
    void requireRecovery();

private:
    using Event = void (Story::*)();

    void playProcess();

    void policyArrives();
    void accountIsRemoved();
    void checkIsAskedFor();
    void unknownRequestArrives();
    void wearerAnswers();
    void keyChanges();
    void deviceIsChanged();
    void timePasses();
    void platformTells();
    void developerSendsPolicy();
    void callsFail();
    void callsWork();
    void processEnds();

    std::string policyMessage();
    bool isRunning() const { return !processHasEnded_ && !service_.platform.service.exited; }
    void requireAdministration();

    ByteReader bytes_;
    FuzzedService service_;
    bool processHasEnded_ = false;
};

} // namespace fuzz

#endif
