/// Includes every public header and uses one thing of each.

#include <zarnsys/util/Astronomy.h>
#include <zarnsys/util/Export.h>
#include <zarnsys/util/FileIO.h>
#include <zarnsys/util/FitsUtils.h>
#include <zarnsys/util/GenConfig.h>
#include <zarnsys/util/MoonGrid.h>
#include <zarnsys/util/StringUtils.h>
#include <zarnsys/util/Utils.h>
#include <zarnsys/util/WexoLogConfig.h>
#include <zarnsys/util/WexoProperties.h>
#include <zarnsys/util/WexoTime.h>
#include <zarnsys/util/ZarnMoonVal.h>
#include <zarnsys/util/ZarnTime.h>

namespace {

// Made before main(), as a program's table of options may be.
const std::string argumentKey = GenConfig::NON_OPTIONAL_ARG;

ZarnSysEx asException(const std::string& text) { return text; }

}  // namespace

int main(int argc, char** argv) {
    std::vector<const char*> arguments(argv, argv + argc);
    GenConfig config(argc, arguments.data());
    float total = 0;
    float available = 0;
    try {
        FileIO("missing/file", true, false).isFile();
    } catch (ZarnSysEx& error) {
        ZarnSysFits::FitsFile* opened = nullptr;
        FitsFile* same = opened;
        const bool works = asException("x").what() == "x" && same == nullptr &&
                           argumentKey == "NonOptionalArgument" &&
                           ZarnSysFits::openFitsFile(opened, "missing", READONLY) != 0 &&
                           ZarnSys::lower(error.what()).find("missing/file") != std::string::npos &&
                           ZarnSys::getFilesystemInfo(".", &total, &available) == 0 &&
                           config.parseCommandLine(false) == 0 &&
                           ZarnSysFits::RECORD_MAX_LENGTH == FLEN_CARD && adj_time(36.5) == -11.5 &&
                           !computeMoonGrid({}, {51544.5}, telescopePlace(OLAN)).phase.empty() &&
                           ZarnMoonVal(0, 0, MJD_DATE(51544.5), OLAN).getFLI() > 0;
        return works ? 0 : 1;
    }
    return 2;
}
