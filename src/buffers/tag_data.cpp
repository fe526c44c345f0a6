#include "buffers/tag_data.h"

CTagData::~CTagData() = default;
