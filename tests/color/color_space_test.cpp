#include <gtest/gtest.h>
#include <kvbase/color/kv_color_space.h>
