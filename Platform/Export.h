// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Marks what the shared libraries export; everything else is hidden. The only macro of this
/// project that callers see.
#define RVF_EXPORT __attribute__((visibility("default")))
