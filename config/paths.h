#pragma once

namespace onu {

// The settings files of a unit.
inline constexpr char kMainSettingsPath[] = "/var/tevo/website/www/xml/tevo_xml_cfg_file.xml";
inline constexpr char kFactorySettingsPath[] = "/var/tevo/xml_default/tevo_xml_cfg_file.xml";
inline constexpr char kProfilePath[] = "/etc/xml_params/onu_profile_xml_cfg_file.xml";
inline constexpr char kEoamSettingsPath[] = "/etc/xml_params/eoam_xml_cfg_file.xml";
inline constexpr char kTpmSettingsPath[] = "/etc/xml_params/tpm_xml_cfg_file.xml";
inline constexpr char kOmciSettingsPath[] = "/etc/xml_params/omci_xml_cfg_file.xml";
inline constexpr char kGponSettingsPath[] = "/etc/xml_params/gpon_xml_cfg_file.xml";

// What the accessor of a settings file is made of: one instance, which holds the file's path.
template <typename Data, const char* path>
class Accessor {
 public:
  // Created on first use, never destroyed.
  static Data& getInstance() {
    // NOLINTNEXTLINE(bugprone-dynamic-static-initializers): holds a constant
    static Data instance;
    return instance;
  }

 protected:
  Accessor() = default;

  const char* path_ = path;
};

}  // namespace onu
