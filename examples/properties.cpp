/// Reads typed values from a properties file: example-properties FILE

#include <zarnsys/util/WexoProperties.h>

#include <iostream>

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    WexoProperties* properties = WexoProperties::instance();
    if (properties->status() != 0 || properties->load(argv[1]) != 0) return 1;
    std::string host = "localhost";  // a value that the file does not give stays as it is
    u_int port = 4000;
    ACE_Time_Value timeout;
    bool compress = false;
    properties->get("net", "host", host);
    properties->get("net", "port", port);
    properties->get("net\\timeouts", "connect", timeout);
    properties->get("files", "compress", compress);
    std::cout << host << ", port " << port << ", " << timeout.sec() << " s, "
              << (compress ? "compressed" : "as it is") << "\n";
    return 0;
}
