/// Uses ACE and CFITSIO once and ends: what any program with both needs to start.

#include <ace/Log_Msg.h>
#include <fitsio.h>

#include <iostream>

int main() {
    float version = 0;
    fits_get_version(&version);
    std::cout << version << " " << ACE_Log_Msg::instance()->getpid() << "\n";
    return 0;
}
