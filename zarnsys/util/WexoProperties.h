/// @file
/// A program's properties file: typed values by section and key.
#ifndef ZARNSYS_UTIL_WEXOPROPERTIES_H
#define ZARNSYS_UTIL_WEXOPROPERTIES_H

#include <ace/Configuration.h>
#include <ace/Time_Value.h>

#include <string>

#include "Export.h"

ACE_BEGIN_VERSIONED_NAMESPACE_DECL
class ACE_Ini_ImpExp;
ACE_END_VERSIONED_NAMESPACE_DECL

/// The properties of the process: one object, made by the first call of `instance` and never
/// destroyed.
///
/// The file is an INI file as ACE imports it: [section] lines, `key = value` lines beneath. Values
/// are kept as text; the getters convert when asked. A plain getter reads the current section,
/// which `open_section` and the getters with a section set.
///
/// Failures return -1, log why and leave the output unchanged; a key that is missing is no error
/// and logged at DEBUG only. Nothing is thrown but `std::bad_alloc`. There is no lock: make the
/// first call of `instance` before any thread is started, and remember that the current section
/// is everybody's.
class ZARNSYS_EXPORT WexoProperties {
public:
    /// The one object. The first call creates it.
    static WexoProperties* instance();

    virtual ~WexoProperties();

    /// 0, or -1 when ACE's storage could not be opened at creation.
    int status() const;

    /// Adds the values of a file to those loaded before; a key given again takes the later value.
    ///
    /// @return  0, or -1 when the file cannot be read. A file that ACE gives up in the middle (for
    ///          example at a line without '=', an unclosed bracket, a key before the first section,
    ///          a name with a bracket, a line over 4095 characters) counts as loaded: the values
    ///          before that line are there.
    int load(const std::string& filename);

    /// Makes a section current.
    ///
    /// @param section  name from the root; a backslash separates the names of nested sections
    /// @return         0, or -1 when there is no such section. What is current then is what ACE
    ///                 leaves: the root, which holds no values; of a nested name its last section
    ///                 that exists; or, for a name that ACE does not take (for example an empty one
    ///                 or one with brackets), the earlier section.
    int open_section(const std::string& section);

    /// The value as it stands in the file, without blanks around it and then without one pair of
    /// double quotes around it.
    int get(const std::string& key, std::string& val);

    /// A whole number in decimal, 0 to 4294967295, blanks around it and a plus sign allowed. With a
    /// minus sign, by the standard's conversion, it counts modulo 4294967296: -1 is 4294967295.
    int get(const std::string& key, u_int& val);

    /// A number as above, as an interval [s]. On 32-bit x86, where the system's time has 32 bits,
    /// 2147483648 and more turn negative.
    int get(const std::string& key, ACE_Time_Value& val);

    /// "T" for true, "F" for false; nothing else.
    int get(const std::string& key, bool& val);

    /// @{
    /// The same after `open_section`, whose result is not looked at: where it failed, the key is
    /// looked for in what it left current.
    int get(const std::string& section, const std::string& key, std::string& val);
    int get(const std::string& section, const std::string& key, u_int& val);
    int get(const std::string& section, const std::string& key, ACE_Time_Value& val);
    int get(const std::string& section, const std::string& key, bool& val);
    /// @}

protected:
    WexoProperties();
    // NOLINTBEGIN(modernize-use-equals-delete): the published interface has them protected
    WexoProperties(const WexoProperties& other) = delete;
    WexoProperties& operator=(const WexoProperties& other) = delete;
    // NOLINTEND(modernize-use-equals-delete)

    static WexoProperties* instance_;  ///< null until the first call of `instance`

private:
    int status_;                             ///< 0, or -1 without storage
    ACE_Configuration_Heap config_;          ///< the values
    ACE_Ini_ImpExp* config_importer_;        ///< reads files into `config_`; owned
    ACE_Configuration_Section_Key section_;  ///< the current section
};

#endif  // ZARNSYS_UTIL_WEXOPROPERTIES_H
