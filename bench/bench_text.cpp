// The text form of a topic dictionary: 1,000 topics of 100 entries each
// (100,000 entries: ints, doubles and short texts) written with
// GENDICT_to_buf and read back with GENDICT_from_buf, against cJSON and
// json-c writing and parsing the equivalent JSON (unformatted, their
// fastest form).  Throughput (MB/s) is the length of each contender's own
// text; entries per second are in the counters.
#include <cjson/cJSON.h>
#include <json-c/json.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "bench_common.hpp"
#include "vorn_container.h"

namespace {

constexpr int kTopics = 1000;
constexpr int kPerTopic = 100;
constexpr int64_t kEntries = int64_t{kTopics} * kPerTopic;

// Entry j of a topic: an int, a double or a short text, in turn.
std::string key_of(int j) { return "key" + std::to_string(j); }
std::string topic_of(int t) { return "topic" + std::to_string(t); }
int32_t int_of(int t, int j) { return static_cast<int32_t>(vorn_bench::mix(t * 1000 + j) % 2000000) - 1000000; }
double real_of(int t, int j) { return static_cast<double>(int_of(t, j)) / 64.0; }
std::string text_of(int t, int j) { return "text " + std::to_string(int_of(t, j) & 0xffff); }

SL_list *gendict_built() {
    SL_list *d = GENDICT_create();
    for (int t = 0; t < kTopics; ++t) {
        SL_list *topic = GENDICT_create();
        for (int j = 0; j < kPerTopic; ++j) {
            GENDICT_value v{};
            std::string text;
            switch (j % 3) {
            case 0: v.kind = GENDICT_INT; v.data.integer = int_of(t, j); break;
            case 1: v.kind = GENDICT_DOUBLE; v.data.real = real_of(t, j); break;
            default:
                text = text_of(t, j);
                v.kind = GENDICT_STRING;
                v.data.text = text.data();
            }
            GENDICT_add(topic, key_of(j).c_str(), v);
        }
        GENDICT_value v{};
        v.kind = GENDICT_DICT;
        v.data.dict = topic;
        GENDICT_add(d, topic_of(t).c_str(), v);
    }
    return d;
}

cJSON *cjson_built() {
    cJSON *root = cJSON_CreateObject();
    for (int t = 0; t < kTopics; ++t) {
        cJSON *topic = cJSON_AddObjectToObject(root, topic_of(t).c_str());
        for (int j = 0; j < kPerTopic; ++j) {
            const std::string k = key_of(j);
            switch (j % 3) {
            case 0: cJSON_AddNumberToObject(topic, k.c_str(), int_of(t, j)); break;
            case 1: cJSON_AddNumberToObject(topic, k.c_str(), real_of(t, j)); break;
            default: cJSON_AddStringToObject(topic, k.c_str(), text_of(t, j).c_str());
            }
        }
    }
    return root;
}

json_object *jsonc_built() {
    json_object *root = json_object_new_object();
    for (int t = 0; t < kTopics; ++t) {
        json_object *topic = json_object_new_object();
        for (int j = 0; j < kPerTopic; ++j) {
            json_object *v;
            switch (j % 3) {
            case 0: v = json_object_new_int(int_of(t, j)); break;
            case 1: v = json_object_new_double(real_of(t, j)); break;
            default: v = json_object_new_string(text_of(t, j).c_str());
            }
            json_object_object_add(topic, key_of(j).c_str(), v);
        }
        json_object_object_add(root, topic_of(t).c_str(), topic);
    }
    return root;
}

void GENDICT_TextWrite(benchmark::State &state) {
    SL_list *d = gendict_built();
    int64_t bytes = 0;
    for (auto _ : vorn_bench::timed(state)) {
        char *buf;
        int32_t length;
        GENDICT_to_buf(d, &buf, &length);
        bytes += length - 1;
        free(buf);
    }
    GENDICT_release(&d);
    state.counters["entries_per_second"] =
        benchmark::Counter(static_cast<double>(state.iterations() * kEntries), benchmark::Counter::kIsRate);
    state.SetBytesProcessed(bytes);
}

void GENDICT_TextRead(benchmark::State &state) {
    SL_list *d = gendict_built();
    char *buf;
    int32_t length;
    GENDICT_to_buf(d, &buf, &length);
    GENDICT_release(&d);
    for (auto _ : vorn_bench::timed(state)) {
        SL_list *r = GENDICT_from_buf(buf);
        if (!r) state.SkipWithError("the text was not read back");
        vorn_bench::pause(state);
        GENDICT_release(&r);
        vorn_bench::resume(state);
    }
    free(buf);
    state.counters["entries_per_second"] =
        benchmark::Counter(static_cast<double>(state.iterations() * kEntries), benchmark::Counter::kIsRate);
    state.SetBytesProcessed(state.iterations() * (length - 1));
}

void CJson_TextWrite(benchmark::State &state) {
    cJSON *root = cjson_built();
    int64_t bytes = 0;
    for (auto _ : vorn_bench::timed(state)) {
        char *text = cJSON_PrintUnformatted(root);
        bytes += static_cast<int64_t>(strlen(text));
        cJSON_free(text);
    }
    cJSON_Delete(root);
    state.counters["entries_per_second"] =
        benchmark::Counter(static_cast<double>(state.iterations() * kEntries), benchmark::Counter::kIsRate);
    state.SetBytesProcessed(bytes);
}

void CJson_TextRead(benchmark::State &state) {
    cJSON *root = cjson_built();
    char *text = cJSON_PrintUnformatted(root);
    cJSON_Delete(root);
    const auto length = static_cast<int64_t>(strlen(text));
    for (auto _ : vorn_bench::timed(state)) {
        cJSON *r = cJSON_Parse(text);
        if (!r) state.SkipWithError("the text was not parsed");
        vorn_bench::pause(state);
        cJSON_Delete(r);
        vorn_bench::resume(state);
    }
    cJSON_free(text);
    state.counters["entries_per_second"] =
        benchmark::Counter(static_cast<double>(state.iterations() * kEntries), benchmark::Counter::kIsRate);
    state.SetBytesProcessed(state.iterations() * length);
}

void JsonC_TextWrite(benchmark::State &state) {
    json_object *root = jsonc_built();
    int64_t bytes = 0;
    for (auto _ : vorn_bench::timed(state)) {
        size_t length;
        // The text lives in the object; it is rebuilt on every call.
        const char *text = json_object_to_json_string_length(root, JSON_C_TO_STRING_PLAIN, &length);
        benchmark::DoNotOptimize(text);
        bytes += static_cast<int64_t>(length);
    }
    json_object_put(root);
    state.counters["entries_per_second"] =
        benchmark::Counter(static_cast<double>(state.iterations() * kEntries), benchmark::Counter::kIsRate);
    state.SetBytesProcessed(bytes);
}

void JsonC_TextRead(benchmark::State &state) {
    json_object *root = jsonc_built();
    const std::string text = json_object_to_json_string_ext(root, JSON_C_TO_STRING_PLAIN);
    json_object_put(root);
    for (auto _ : vorn_bench::timed(state)) {
        json_object *r = json_tokener_parse(text.c_str());
        if (!r) state.SkipWithError("the text was not parsed");
        vorn_bench::pause(state);
        json_object_put(r);
        vorn_bench::resume(state);
    }
    state.counters["entries_per_second"] =
        benchmark::Counter(static_cast<double>(state.iterations() * kEntries), benchmark::Counter::kIsRate);
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}

// The same entries put in through RDBDICT_add, topic by topic: each add
// walks the topics to its own, then that topic's keys, so an entry costs
// in proportion to the topics before it and the keys already in its topic.
void RDBDICT_TopicAdd(benchmark::State &state) {
    std::vector<std::string> topics, keys;
    for (int t = 0; t < kTopics; ++t) topics.push_back(topic_of(t));
    for (int j = 0; j < kPerTopic; ++j) keys.push_back(key_of(j));
    for (auto _ : vorn_bench::timed(state)) {
        SL_list *d = RDBDICT_create();
        for (int t = 0; t < kTopics; ++t) {
            for (int j = 0; j < kPerTopic; ++j) {
                GENDICT_value v{};
                v.kind = GENDICT_INT;
                v.data.integer = int_of(t, j);
                RDBDICT_add(d, topics[static_cast<size_t>(t)].c_str(), keys[static_cast<size_t>(j)].c_str(), v);
            }
        }
        vorn_bench::pause(state);
        RDBDICT_release(&d);
        vorn_bench::resume(state);
    }
    vorn_bench::finish(state, kEntries);
}

}  // namespace

#define VORN_TEXT_BENCH(name) BENCHMARK(name)->Unit(benchmark::kMillisecond)
VORN_TEXT_BENCH(GENDICT_TextWrite);
VORN_TEXT_BENCH(CJson_TextWrite);
VORN_TEXT_BENCH(JsonC_TextWrite);
VORN_TEXT_BENCH(GENDICT_TextRead);
VORN_TEXT_BENCH(CJson_TextRead);
VORN_TEXT_BENCH(JsonC_TextRead);
VORN_TEXT_BENCH(RDBDICT_TopicAdd);
