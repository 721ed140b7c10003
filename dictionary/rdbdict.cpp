// RDBDICT: topics are top-level entries of kind GENDICT_DICT; everything else
// is GENDICT.  The text operations of this family live with the text form.

#include "vorn_rdbdict.h"

#include "checked.hpp"

namespace {

// The topic's sub-dictionary, or null when the name is missing, holds
// another kind, or holds a null dictionary.
SL_list *topic_of(SL_list *dict, const char *topic) {
    GENDICT_value v;
    if (!GENDICT_get(dict, topic, &v) || v.kind != GENDICT_DICT) return nullptr;
    return v.data.dict;
}

}  // namespace

extern "C" {

SL_list *RDBDICT_create(void) { return GENDICT_create(); }

void RDBDICT_add(SL_list *dict, const char *topic, const char *key, GENDICT_value value) {
    VORN_CHK(list(__func__, dict));
    GENDICT_value t;
    SL_list *target;
    if (GENDICT_get(dict, topic, &t)) {
        if (t.kind != GENDICT_DICT || !t.data.dict) return;  // no topic: the value stays the caller's
        target = t.data.dict;
    } else {
        target = SL_create();
        GENDICT_value sub;
        sub.kind = GENDICT_DICT;
        sub.data.dict = target;
        GENDICT_add(dict, topic, sub);
    }
    GENDICT_add(target, key, value);
}

int32_t RDBDICT_get(SL_list *dict, const char *topic, const char *key, GENDICT_value *out) {
    VORN_CHK(list(__func__, dict));
    SL_list *sub = topic_of(dict, topic);
    return sub ? GENDICT_get(sub, key, out) : 0;
}

SL_list *RDBDICT_get_topic(SL_list *dict, const char *topic) {
    VORN_CHK(list(__func__, dict));
    return topic_of(dict, topic);
}

void RDBDICT_delete_key(SL_list *dict, const char *topic, const char *key) {
    VORN_CHK(list(__func__, dict));
    if (SL_list *sub = topic_of(dict, topic)) GENDICT_delete_item(sub, key);
}

void RDBDICT_delete_topic(SL_list *dict, const char *topic) {
    VORN_CHK(list(__func__, dict));
    GENDICT_delete_item(dict, topic);
}

SL_list *RDBDICT_copy(SL_list *dict) {
    VORN_CHK(list(__func__, dict));
    return GENDICT_copy(dict);
}

void RDBDICT_release(SL_list **handle) {
    if (*handle) VORN_CHK(list(__func__, *handle));
    GENDICT_release(handle);
}

}  // extern "C"
