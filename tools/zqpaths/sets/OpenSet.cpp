#include "tools/zqpaths/sets/OpenSet.hpp"

#include "tools/zqpaths/CutShortFile.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"

namespace zqpaths::program {

PathSet openSet(const std::string& file) {
    nameWhatIsRead(printablePath(file));
    return PathSet::open(file);
}

}  // namespace zqpaths::program
