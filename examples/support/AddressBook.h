#pragma once

#include <CQSString.h>

#include <string>
#include <vector>

struct Contact {
    unsigned int number = 0;
    CQSString nickname;
    CQSString group;
    CQSString remark;
};

struct Group {
    unsigned int id;
    CQSString name;
    std::vector<const Contact*> members;
};

/// Reads an address book, one contact a line: number, nickname, group and remark, with tabs
/// between. Throws a SampleFailure with file and line of what is wrong.
std::vector<Contact> ReadContacts(const CQSString& path);

/// Groups in the order in which the address book names them, numbered from 1.
std::vector<Group> CollectGroups(const std::vector<Contact>& contacts);

/// A number from 1 to 4294967295; a SampleFailure that begins with `where` for anything else.
unsigned int ParseNumber(const CQSString& field, const std::string& where);
