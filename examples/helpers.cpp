/// Takes a list of filters apart, and asks how much room there is.

#include <zarnsys/util/StringUtils.h>
#include <zarnsys/util/Utils.h>

#include <iostream>

int main() {
    std::vector<std::string> filters;
    ZarnSys::split("R, V,, Halpha", ", ", filters);
    for (const std::string& filter : filters) std::cout << ZarnSys::lower(filter) << "\n";

    float size = 0;
    float free = 0;
    if (ZarnSys::getFilesystemInfo(".", &size, &free) != 0) return 1;
    std::cout << "free: " << static_cast<long>(free) << " of " << static_cast<long>(size)
              << " MiB\n";
    return 0;
}
