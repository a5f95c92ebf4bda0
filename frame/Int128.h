#pragma once
namespace vorn {
__extension__ using Int128 = __int128;
}
