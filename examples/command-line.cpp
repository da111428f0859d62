/// A program with one mandatory option: example-command-line --name Ada

#include <zarnsys/util/GenConfig.h>

#include <iostream>
#include <vector>

class HelloConfig : public GenConfig {
public:
    explicit HelloConfig(std::vector<const char*> arguments)
        : GenConfig(static_cast<int>(arguments.size()), arguments.data()) {
        optionMap_["name"] = {'n', "name", true, true, "Whom to greet", ""};
    }
    const std::string& name() const { return optionMap_.at("name").availValues_.front(); }
};

int main(int argc, char** argv) {
    HelloConfig config({argv, argv + argc});
    if (config.parseCommandLine(true) != 0) {
        config.displayHelp();
        return 2;
    }
    std::cout << "Hello, " << config.name() << "\n";
    return 0;
}
