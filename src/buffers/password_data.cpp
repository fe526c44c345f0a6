#include "buffers/password_data.h"

#include "bytes/secure.h"

CVerifyPwdData::~CVerifyPwdData() { mira::bytes::Wipe(Password); }
CChangePwdData::~CChangePwdData() { mira::bytes::Wipe(NewPassword); }
