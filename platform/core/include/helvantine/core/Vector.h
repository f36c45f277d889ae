// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Vec2.h>
#include <helvantine/core/Vec3.h>
#include <helvantine/core/Vec4.h>
