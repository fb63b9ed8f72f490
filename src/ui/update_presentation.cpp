#include "ui/update_presentation.h"

#include "base/text.h"
#include "base/translation.h"
#include "ui/symbols.h"

#include <utility>

namespace wegslot::panel {
namespace {

struct BannerOf {
    const UpdateFacts& facts;

    UpdateBanner operator()(const update_state::Available& state) const {
        return offer(state.release, Button{.symbol = {}, .text = translated("Update")});
    }
    UpdateBanner operator()(const update_state::Downloading& state) const {
        return offer(state.release, Busy{translated("Downloaden")});
    }
    UpdateBanner operator()(const update_state::Installing& state) const {
        return offer(state.release, Busy{translated("Installeren")});
    }
    UpdateBanner operator()(const update_state::InstallFailed& state) const {
        return UpdateTrouble{.symbol = std::string(symbols::warning),
                             .text = translated("Update mislukt: %1", {state.message}),
                             .retry = {.symbol = {}, .text = translated("Probeer opnieuw")}};
    }
    UpdateBanner operator()(const update_state::Idle&) const { return {}; }
    UpdateBanner operator()(const update_state::Checking&) const { return {}; }
    UpdateBanner operator()(const update_state::UpToDate&) const { return {}; }
    UpdateBanner operator()(const update_state::Failed&) const { return {}; }

    [[nodiscard]] UpdateBanner offer(const Release& release,
                                     std::variant<Button, Busy> install) const {
        return UpdateOffer{.symbol = std::string(symbols::update),
                           .title = translated("Versie %1 is er", {printable(release.version)}),
                           .current = translated("Je hebt nu %1", {facts.currentVersion}),
                           .install = std::move(install),
                           .notes = release.notes.value_or("")};
    }
};

struct StatusOf {
    bool isConfigured;

    std::string operator()(const update_state::Available& state) const {
        return translated("Versie %1 is beschikbaar", {printable(state.release.version)});
    }
    std::string operator()(const update_state::Failed& state) const {
        return state.message.translated();
    }
    std::string operator()(const update_state::InstallFailed& state) const {
        return state.message.translated();
    }
    std::string operator()(const update_state::Checking&) const { return translated("Zoeken…"); }
    std::string operator()(const update_state::UpToDate&) const {
        return translated("Je hebt de nieuwste versie");
    }
    std::string operator()(const update_state::Idle&) const { return quiet(); }
    // The banner tells what is under way.
    std::string operator()(const update_state::Downloading&) const { return quiet(); }
    std::string operator()(const update_state::Installing&) const { return quiet(); }

    [[nodiscard]] std::string quiet() const {
        return isConfigured ? "" : translated("Updates staan uit in deze versie");
    }
};

} // namespace

UpdateBanner updateBanner(const UpdateFacts& facts) {
    return std::visit(BannerOf{facts}, facts.state);
}

VersionBlock versionBlock(const UpdateFacts& facts) {
    const bool isChecking = std::holds_alternative<update_state::Checking>(facts.state);
    return {.version = translated("Versie %1", {facts.currentVersion}),
            .status = std::visit(StatusOf{facts.isConfigured}, facts.state),
            .check = {.symbol = {},
                      .text = translated("Zoek naar updates"),
                      .tooltip = {},
                      .isEnabled = facts.isConfigured && !isChecking}};
}

} // namespace wegslot::panel
