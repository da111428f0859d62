/// Writes a note, reads it back, removes it.

#include <zarnsys/util/FileIO.h>
#include <zarnsys/util/ZarnSysEx.h>

#include <iostream>
#include <sstream>

int main() {
    try {
        FileIO note(std::string("example-notes/night.txt"), true, true);
        note.write("seeing 0.9\n");  // creates the directory and the file
        std::stringstream text;
        note.close().load(text);
        std::cout << "read back: " << text.str();
        note.remove(true).setFileName("example-notes").remove(true);
        return 0;
    } catch (ZarnSysEx& error) {
        std::cerr << error.what() << "\n";
        return 1;
    }
}
