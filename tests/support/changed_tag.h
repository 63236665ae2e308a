// SPDX-License-Identifier: Apache-2.0

#ifndef TESTS_SUPPORT_CHANGED_TAG_H
#define TESTS_SUPPORT_CHANGED_TAG_H

/// Gives a class of the tree another XML element name for as long as it lives.
class changed_tag {
public:
    changed_tag(const char*& tag, const char* text) : tag_(tag), former_(tag) { tag_ = text; }
    ~changed_tag() { tag_ = former_; }
    changed_tag(const changed_tag&) = delete;
    changed_tag& operator=(const changed_tag&) = delete;

private:
    const char*& tag_;
    const char* former_;
};

#endif
