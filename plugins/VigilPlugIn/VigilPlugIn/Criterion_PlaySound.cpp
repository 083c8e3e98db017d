#include "platform/ClassRegistry.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/ActionTexts.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Actions.hpp"

namespace vigil {

void PlaySoundCriterion::performActionWithDisplayValues(const DisplayValueList& displayValues) {
    const auto bundle = ClassRegistry::shared().bundleForClass(className());
    setAlertWavFileName(bundle ? std::optional(bundle->resourcePath) : std::nullopt);
    const auto title = titleOfSelectedItem(displayValues.at(1));
    const std::string path =
        filled("%@/%@", {alertWavFileName().value_or(kAbsentText), title.value_or(kAbsentText)});
    setAlertWavFileName(path);

    // The player is never started; it is there for the next performance to stop. What is heard is a sound of
    // its own that nobody keeps, so two performances overlap.
    if (const auto before = audioPlayer()) before->stop();
    HostWorld* host = world();
    setAudioPlayer(host ? host->sound().makePlayer(path) : nullptr);
    if (host) host->sound().play(path);
}

}  // namespace vigil
