// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/network/LocalNetworkBrowser.h"

namespace nightjar {

LocalNetworkBrowser::LocalNetworkBrowser(const PlatformServices&)
    : m_state(announcerOf<&LocalNetworkBrowser::stateChanged>(*this), "Local Network is ready"),
      m_isScanning(announcerOf<&LocalNetworkBrowser::isScanningChanged>(*this)),
      m_errorMessage(announcerOf<&LocalNetworkBrowser::errorMessageChanged>(*this)) {}

LocalNetworkBrowser::~LocalNetworkBrowser() = default;

} // namespace nightjar
