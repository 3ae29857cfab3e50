// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Whether a descriptor is a terminal that understands colours and cursor movements: TERM is set
/// and not "dumb".
bool isCapableTerminal(int descriptor);
