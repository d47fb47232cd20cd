#pragma once

#include <random>
#include <vector>

#include "balancing/TLBlockMesh.h"

/// A lattice of nx * ny * nz blocks, each connected to its up to six neighbours. The number of
/// nodes differs from layer to layer, so that blocks are of very unequal weights while their faces
/// still match.
inline TLBlockMesh lattice(int nx, int ny, int nz, unsigned seed = 1) {
  using M = TLBlockMesh;
  M mesh;
  std::mt19937 random(seed);
  const int count[3] = {nx, ny, nz};
  std::vector<int> nodes[3];
  for (int d = 0; d < 3; ++d) {
    for (int i = 0; i < count[d]; ++i) nodes[d].push_back(9 + static_cast<int>(random() % 40));
  }
  const auto number = [&](const int(&at)[3]) { return 1 + at[0] + nx * (at[1] + ny * at[2]); };
  // The K faces, then the J faces, then the I faces, as they stand in a block.
  const struct {
    M::Direction normal, u, w;
  } faces[] = {{M::K, M::I, M::J}, {M::J, M::I, M::K}, {M::I, M::J, M::K}};
  int at[3];
  for (at[2] = 0; at[2] < nz; ++at[2]) {
    for (at[1] = 0; at[1] < ny; ++at[1]) {
      for (at[0] = 0; at[0] < nx; ++at[0]) {
        M::Block block;
        for (int d = 0; d < 3; ++d) block.nodes[d] = nodes[d][static_cast<std::size_t>(at[d])];
        mesh.blocks.push_back(block);
        for (const auto& face : faces) {
          for (const int step : {-1, 1}) {
            int other[3] = {at[0], at[1], at[2]};
            other[face.normal] += step;
            if (other[face.normal] < 0 || other[face.normal] >= count[face.normal]) continue;
            M::Patch patch;
            patch.u = face.u;
            patch.w = face.w;
            patch.uMax = block.nodes[face.u];
            patch.wMax = block.nodes[face.w];
            mesh.connections.push_back({number(at), number(other), patch});
          }
        }
      }
    }
  }
  return mesh;
}
