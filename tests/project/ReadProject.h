#pragma once

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/bytes/RiffStream.h"
#include "project/ProjectReader.h"
#include "support/FaultyStream.h"
#include "support/ProjectBytes.h"

namespace marnoth::test {

inline LoadFault readFault(const Bytes& bytes, Project& project) {
    FaultyStream content(bytes);
    RiffStream stream;
    EXPECT_EQ(stream.open(&content), kRiffOk);
    return readProject(stream, project);
}

inline LoadFault readFault(const ProjectBytes& project) {
    Project ignored;
    return readFault(project.bytes(), ignored);
}

/// The same as a code.
inline HRESULT readBytes(const Bytes& bytes, Project& project) {
    return codeOf(readFault(bytes, project));
}

inline HRESULT readResult(const ProjectBytes& project) {
    return codeOf(readFault(project));
}

/// Two files and four pads: mono and stereo, whole and in part, forwards and shuffled.
inline ProjectBytes twoFilesFourPads(std::int64_t frames = 64) {
    ProjectBytes project;
    project.files.push_back(projectFile(frames, 4, 0));
    project.files.push_back(projectFile(frames / 2, 2, 1, 2));
    project.pads[0] = padOf(project.files[0]);
    project.pads[1] = padOf(project.files[1]);
    project.pads[2] = padOf(project.files[0]);
    std::reverse(project.pads[2].grains.begin(), project.pads[2].grains.end());
    project.pads[5].settings = project.files[0].settings;
    project.pads[5].grains = {project.files[0].grains[2], project.files[1].grains[1]};
    return project;
}

}  // namespace marnoth::test
