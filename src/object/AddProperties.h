// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/object/AddProperties.h>
