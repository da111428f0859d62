#include "zarnsys/util/ZarnSysEx.h"

ZarnSysEx::ZarnSysEx(const std::string& msg) : msg_(msg) {}

ZarnSysEx::ZarnSysEx(const ZarnSysEx& other) = default;

ZarnSysEx& ZarnSysEx::operator=(const ZarnSysEx& other) = default;

ZarnSysEx::~ZarnSysEx() = default;

std::string& ZarnSysEx::what() { return msg_; }
