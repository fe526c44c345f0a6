#include "buffers/password_data.h"

#include "bytes/secure.h"

using mira::bytes::Replace;
using mira::bytes::Wipe;

CVerifyPwdData& CVerifyPwdData::operator=(const CVerifyPwdData& other) {
  CSimpleTokenData::operator=(other);
  MaxPwdLen = other.MaxPwdLen;
  Replace(Password, other.Password);
  return *this;
}

CChangePwdData& CChangePwdData::operator=(const CChangePwdData& other) {
  CVerifyPwdData::operator=(other);
  Replace(NewPassword, other.NewPassword);
  return *this;
}

CVerifyPwdData::~CVerifyPwdData() { Wipe(Password); }
CChangePwdData::~CChangePwdData() { Wipe(NewPassword); }
