#include "zarnsys/util/WexoProperties.h"

#include <ace/Configuration_Import_Export.h>

#include <locale>
#include <sstream>

#include "zarnsys/util/Log.h"

namespace {

constexpr std::size_t DEFAULT_MAP_SIZE = 16;  // hash buckets of each section
constexpr bool NEVER_CREATE = false;

/// Opens `section`, whatever comes of it, and reads `key` there.
template <typename Value>
int getFrom(WexoProperties& properties, const std::string& section, const std::string& key,
            Value& val) {
    properties.open_section(section);
    return properties.get(key, val);
}

}  // namespace

WexoProperties* WexoProperties::instance_ = nullptr;

WexoProperties* WexoProperties::instance() {
    if (instance_ == nullptr) {
        logDebug()("Creating unique instance of WexoProperties");
        instance_ = new WexoProperties();
    }
    return instance_;
}

WexoProperties::WexoProperties() : status_(0), config_importer_(nullptr) {
    if (config_.open(DEFAULT_MAP_SIZE) == -1) {
        logError()("Can't open configuration");
        status_ = -1;
    }
    config_importer_ = new ACE_Ini_ImpExp(config_);
}

WexoProperties::~WexoProperties() { delete config_importer_; }

int WexoProperties::status() const { return status_; }

int WexoProperties::load(const std::string& filename) {
    logDebug()("Loading configuration file %s", filename.c_str());
    if (config_importer_->import_config(filename.c_str()) == -1) {
        logError()("Can't load configuration file %s", filename.c_str());
        return -1;
    }
    return 0;
}

int WexoProperties::open_section(const std::string& section) {
    logDebug()("Opening section %s", section.c_str());
    if (config_.open_section(config_.root_section(), section.c_str(), NEVER_CREATE, section_) ==
        -1) {
        logError()("Can't open section %s", section.c_str());
        return -1;
    }
    return 0;
}

int WexoProperties::get(const std::string& key, std::string& val) {
    logDebug()("Getting string property %s", key.c_str());
    ACE_TString tmpVal;
    if (config_.get_string_value(section_, key.c_str(), tmpVal) == -1) {
        logDebug()("Can't get string property %s", key.c_str());
        return -1;
    }
    val = tmpVal.c_str();
    return 0;
}

int WexoProperties::get(const std::string& key, u_int& val) {
    logDebug()("Getting unsigned integer property %s", key.c_str());
    std::string tmpString;
    if (get(key, tmpString) != 0) {
        logDebug()("Can't get unsigned integer property %s", key.c_str());
        return -1;
    }
    std::istringstream stringData(tmpString);
    stringData.imbue(std::locale::classic());  // no grouping, whatever the program's locale
    stringData.exceptions(std::ios::badbit);   // memory that runs out is no wrong value
    u_int tmpVal = 0;
    if (!(stringData >> tmpVal)) {
        logError()("Can't parse value %s for unsigned integer property %s", tmpString.c_str(),
                   key.c_str());
        return -1;
    }
    if (stringData >> tmpString) {
        logError()("Value %s for unsigned integer property %s has trailing garbage",
                   tmpString.c_str(), key.c_str());
        return -1;
    }
    val = tmpVal;
    return 0;
}

int WexoProperties::get(const std::string& key, ACE_Time_Value& val) {
    logDebug()("Getting ACE_Time_Value property %s", key.c_str());
    u_int seconds = 0;
    if (get(key, seconds) != 0) {
        logDebug()("Can't get ACE_Time_Value property %s", key.c_str());
        return -1;
    }
    val.set(static_cast<time_t>(seconds), 0);
    return 0;
}

int WexoProperties::get(const std::string& key, bool& val) {
    logDebug()("Getting boolean property %s", key.c_str());
    std::string text;
    if (get(key, text) != 0) {
        logDebug()("Can't get boolean property %s", key.c_str());
        return -1;
    }
    if (text != "T" && text != "F") {
        logError()("Boolean property %s must be set to \"T\" or \"F\"", key.c_str());
        return -1;
    }
    val = text == "T";
    return 0;
}

int WexoProperties::get(const std::string& section, const std::string& key, std::string& val) {
    return getFrom(*this, section, key, val);
}

int WexoProperties::get(const std::string& section, const std::string& key, u_int& val) {
    return getFrom(*this, section, key, val);
}

int WexoProperties::get(const std::string& section, const std::string& key, ACE_Time_Value& val) {
    return getFrom(*this, section, key, val);
}

int WexoProperties::get(const std::string& section, const std::string& key, bool& val) {
    return getFrom(*this, section, key, val);
}
