// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/json/Schema.h"
#include "core/mesh/MeshMessage.h"
#include "core/mesh/MeshNode.h"
#include "core/mesh/MeshPosition.h"

namespace nightjar::json {

template <>
const Schema& schemaOf<MeshPosition>();
template <>
const Schema& schemaOf<MeshNode>();
template <>
const Schema& schemaOf<MeshMessage>();

} // namespace nightjar::json
