#pragma once

#include <algorithm>
#include <random>

#include "balancing/TLBlockMesh.h"
#include "balancing/TLCoarsening.h"

/// A partitioning to try, made from a seed: meshes of all shapes, from no connection at all to a
/// clique, with equal and with very unequal blocks, and weights that single precision rounds.
struct RandomMesh {
  TLBlockMesh mesh;
  TLCoarsening coarsening;
  int nbProcessors = 1;
  float tolerance = 0;
  int adjust = 1;

  explicit RandomMesh(unsigned seed, int mostBlocks = 40) : random_(seed) {
    const int nbBlocks = pick(0, 60) == 0 ? 0 : pick(1, mostBlocks);
    makeCoarsening();
    makeBlocks(nbBlocks);
    if (nbBlocks > 0) {
      connect(nbBlocks);
      connectFully(nbBlocks);
    }
    nbProcessors = pick(0, 3) == 0 ? pick(1, nbBlocks + 4) : pick(1, std::max(1, nbBlocks / 3));
    const float tolerances[] = {0, 0, 0, 0.05F, 0.3F, 2};
    tolerance = tolerances[pick(0, 5)];
    adjust = pick(0, 1);
  }

 private:
  // The same on every system, as those of the library are not.
  int pick(int low, int high) {
    return low + static_cast<int>(random_() % static_cast<unsigned>(high - low + 1));
  }

  void makeCoarsening() {
    coarsening.nbGridLevels = pick(0, 2) == 0 ? pick(1, 4) : 1;
    for (int d = 0; d < 3; ++d) {
      coarsening.gridLevel[static_cast<std::size_t>(d)] = std::max(0, pick(-4, 2));
      coarsening.multigrid[static_cast<std::size_t>(d)] = pick(0, 3) == 0 ? 0 : 1;
    }
  }

  void makeBlocks(int nbBlocks) {
    mesh.unstructured = pick(0, 9) == 0;
    const int kind = pick(0, 4);
    for (int b = 0; b < nbBlocks; ++b) {
      TLBlockMesh::Block block;
      for (int& n : block.nodes) {
        const int most[] = {9, 3, 33, 700, 5};
        n = kind == 0 ? 9 : pick(kind == 4 ? 1 : 2, most[kind]);
        if (kind == 2 && pick(0, 30) == 0) n = 300;
      }
      block.nbCells = pick(0, 4) == 0 ? pick(0, 100000000) : pick(0, 50);
      block.solid = pick(0, 5) == 0;
      mesh.blocks.push_back(block);
    }
  }

  TLBlockMesh::Patch patch(const TLBlockMesh::Block& block) {
    const std::pair<TLBlockMesh::Direction, TLBlockMesh::Direction> faces[] = {
        {TLBlockMesh::I, TLBlockMesh::J},
        {TLBlockMesh::I, TLBlockMesh::K},
        {TLBlockMesh::J, TLBlockMesh::K}};
    TLBlockMesh::Patch p;
    std::tie(p.u, p.w) = faces[pick(0, 2)];
    p.uMax = block.nodes[p.u];
    p.wMax = block.nodes[p.w];
    if (pick(0, 3) == 0) p.uMin = pick(1, p.uMax);
    if (pick(0, 3) == 0) p.wMin = pick(1, p.wMax);
    return p;
  }

  void connect(int nbBlocks) {
    const int links = pick(0, 3) == 0 ? 0 : pick(0, nbBlocks * pick(1, 4));
    const int reach = pick(0, 1) == 0 ? nbBlocks : 4;
    for (int i = 0; i < links; ++i) {
      const int b = pick(1, nbBlocks);
      const int c = std::clamp(b + pick(-reach, reach), 1, nbBlocks);
      mesh.connections.push_back({b, c, patch(mesh.blocks[static_cast<std::size_t>(b - 1)])});
      mesh.connections.push_back({c, b, patch(mesh.blocks[static_cast<std::size_t>(c - 1)])});
    }
    std::stable_sort(mesh.connections.begin(), mesh.connections.end(),
                     [](const auto& a, const auto& b) { return a.block < b.block; });
  }

  void connectFully(int nbBlocks) {
    for (int i = std::max(0, pick(-3, 3)); i > 0; --i) {
      TLBlockMesh::FullNonMatching record;
      for (auto* side : {&record.left, &record.right}) {
        for (int n = pick(0, 3); n > 0; --n) {
          const int b = pick(1, nbBlocks);
          side->push_back({b, patch(mesh.blocks[static_cast<std::size_t>(b - 1)])});
        }
      }
      mesh.fullNonMatching.push_back(record);
    }
  }

  std::mt19937 random_;
};
