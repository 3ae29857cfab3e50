// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A text that its library allocates before `main`, so that it is seen that this is seen.
__attribute__((visibility("default"))) const char* greedyText();
