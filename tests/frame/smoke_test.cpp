#include <gtest/gtest.h>
#include "frame/Db.h"
using namespace vorn;
TEST(Smoke, Importo) { EXPECT_EQ(Importo::DaTestoPunto("12.345").value().Raw(), 123450); }
