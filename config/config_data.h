#pragma once

#include <string>
#include <vector>

#include "config/paths.h"

namespace onu {

struct CommInfo {
  std::string vendor;
  std::string model;
  std::string softwareVersion;
  std::string onu_id;
};

struct IpInfo {
  std::string ipAddress;
  std::string netMask;
  std::string onu_mac;
};

struct FecInfo {
  std::string fec_mode;
  std::string fec_ability;
};

struct LoidInfo {
  std::string loid;
  std::string password;
};

// What the unit is and what it identifies itself with.
struct UnitIdentity {
  CommInfo comm;
  IpInfo ip;
  FecInfo fec;
  LoidInfo loid;
};

struct VlanPortInfo {
  std::string port;
  std::string mode;
  std::string default_vid;
  std::string vid_sum;
  std::string vid_serial;
};

struct PhyPortInfo {
  std::string port;
  std::string phy_admin;
  std::string flow_control;
  std::string auto_neg;
  std::string mode;
  std::string mode_max;
};

// The main settings file. Values are texts, numbers too. Every call reads the file anew and a
// setter writes it back as a whole. All return 0, or -1 when the file cannot be opened or the
// group of the value is missing, a setter also without the element that it is to set; a single
// value that a getter does not find leaves its field as it is. Writing is not checked.
class ConfigData : public Accessor<ConfigData, kMainSettingsPath> {
 public:
  int getCommInfo(CommInfo& info) const;

  int getIpInfo(IpInfo& info) const;
  // Stores address and mask, when one of them has changed. -1 also, with nothing read, when either
  // is shorter than 8 characters; their form is not checked. -1 also, with a message on standard
  // output, when either has no element.
  int setIpInfo(const IpInfo& info) const;
  // -1 also, with a message on standard output, when there is no onu_mac to set.
  int setMac(const std::string& mac) const;

  // What getCommInfo, getIpInfo, getFec and getLoid fill, from one reading of the file.
  void getIdentity(UnitIdentity& identity) const;

  // 0 with `password` untouched for an account that does not exist.
  int getAccountPassword(const std::string& account, std::string& password) const;
  int getAdminPassword(std::string& password) const;
  int getUserPassword(std::string& password) const;
  // These write only when the password has changed.
  int setAdminPassword(const std::string& password) const;
  int setUserPassword(const std::string& password) const;

  // Replaces the list by the ports in the order of the file. A port that lacks its mode, vid_serial
  // or vid_sum has that of the port before it. -1 also when there is no port or one of them has no
  // default_vid.
  int getVlanPorts(std::vector<VlanPortInfo>& ports) const;
  // default_vid stays as it is when the given one is empty. 0 with nothing written when no port has
  // that name; -1 when there is no port at all.
  int setVlanPort(const VlanPortInfo& info) const;

  // -1 when either value is missing.
  int getFec(FecInfo& info) const;
  // Writes only when the mode has changed.
  int setFecMode(const std::string& mode) const;

  // -1 when there is none.
  int getSn(std::string& sn) const;
  // Writes only when the number has changed.
  int setSn(const std::string& sn) const;

  // -1 when there is none; a LOID without a password leaves that as it is.
  int getLoid(LoidInfo& info) const;
  int setLoid(const LoidInfo& info) const;

  // Appends the ports, in the order of the file, to what the list holds. -1 when there is none.
  int getPhyPorts(std::vector<PhyPortInfo>& ports) const;
  // What getVlanPorts and getPhyPorts fill, from one reading of the file.
  void getPorts(std::vector<VlanPortInfo>& vlan, std::vector<PhyPortInfo>& phy) const;
  // mode_max is never written. -1 when no port has that name.
  int setPhyPort(const PhyPortInfo& info) const;

  // Of the first port of that name that carries a time. -1 when there is none.
  int getMacAgingTime(const std::string& port, std::string& time) const;
  // Writes only when the time has changed. -1 when no port has that name.
  int setMacAgingTime(const std::string& port, const std::string& time) const;

  // Of the first port of the storm group. -1 when there is none.
  int getStorm(std::string& mode, std::string& threshold) const;
  // An empty threshold leaves the stored one.
  int setStorm(const std::string& mode, const std::string& threshold) const;
};

}  // namespace onu
