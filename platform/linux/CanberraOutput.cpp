// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/CanberraOutput.h"

#include <canberra.h>

#include <utility>

#include <dlfcn.h>

namespace nightjar {
namespace {

void ignoreAlsaError(const char*, int, const char*, int, const char*, ...) {}

/// ALSA writes a dozen lines to standard error for a computer without a sound card unless it is told where to
/// send them. It is asked for by name, because only the plugin of libcanberra needs it.
void silenceAlsa() {
    using SetHandler = int (*)(decltype(&ignoreAlsaError));
    // Stays loaded: the plugin uses the same one.
    void* alsa = ::dlopen("libasound.so.2", RTLD_LAZY);
    if (!alsa)
        return;
    if (const auto set = reinterpret_cast<SetHandler>(::dlsym(alsa, "snd_lib_error_set_handler")))
        set(ignoreAlsaError);
}

struct Free {
    void operator()(ca_proplist* properties) const { ca_proplist_destroy(properties); }
};
using Properties = std::unique_ptr<ca_proplist, Free>;

Properties properties(const Sound& sound) {
    ca_proplist* created = nullptr;
    if (ca_proplist_create(&created) != CA_SUCCESS)
        return nullptr;
    ca_proplist_sets(created, CA_PROP_MEDIA_ROLE, "event");
    if (const auto* theme = std::get_if<ThemeSound>(&sound)) {
        ca_proplist_sets(created, CA_PROP_EVENT_ID, theme->name.c_str());
    } else {
        ca_proplist_sets(created, CA_PROP_MEDIA_FILENAME, std::get<std::filesystem::path>(sound).c_str());
        ca_proplist_sets(created, CA_PROP_CANBERRA_CACHE_CONTROL, "permanent");
    }
    return Properties(created);
}

} // namespace

CanberraOutput::CanberraOutput() = default;
CanberraOutput::~CanberraOutput() = default;

void CanberraOutput::Destroy::operator()(ca_context* context) const {
    ca_context_destroy(context);
}

SoundOutput::Opened CanberraOutput::open(Way way) {
    if (way == Way::hardware)
        silenceAlsa();
    ca_context* created = nullptr;
    if (ca_context_create(&created) != CA_SUCCESS)
        return Opened::no;
    std::unique_ptr<ca_context, Destroy> context(created);
    ca_context_set_driver(created, way == Way::soundServer ? "pulse" : "alsa");
    ca_context_change_props(created, CA_PROP_APPLICATION_NAME, "Nightjar", nullptr);
    const int result = ca_context_open(created);
    if (result == CA_ERROR_NODRIVER)
        return Opened::wayIsMissing;
    if (result != CA_SUCCESS)
        return Opened::no;
    m_context = std::move(context);
    m_way = way;
    return Opened::yes;
}

SoundOutput::Played CanberraOutput::play(const Sound& sound) {
    const auto wanted = properties(sound);
    const int result = m_context && wanted
                           ? ca_context_play_full(m_context.get(), 0, wanted.get(), nullptr, nullptr)
                           : CA_ERROR_STATE;
    if (result == CA_SUCCESS)
        return Played::yes;
    // Without a sound card, the driver of the hardware gives the same answer.
    return result == CA_ERROR_NOTFOUND && m_way == Way::soundServer ? Played::soundIsMissing : Played::no;
}

void CanberraOutput::close() {
    m_context.reset();
}

} // namespace nightjar
