// The client's grid, reached by the one member that the statements use: a line added at the
// end, its cells separated by "|".
#pragma once
#include <string>

namespace vorn {

class IGriglia {
 public:
  virtual ~IGriglia() = default;
  virtual void AddItem(const std::string& riga) = 0;
};

}  // namespace vorn
