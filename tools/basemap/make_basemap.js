// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0

// Turns the land outlines of the package "world-atlas" (TopoJSON) into the one small file of the built-in map:
//
//     node make_basemap.js FOLDER_OF_THE_PACKAGE land.bin
//
// The file holds three levels of detail. Each is cut into the cells of one zoom of the usual tile grid, with some
// overlap, so that the program reads only what a tile shows. All numbers are little-endian:
//
//     "NJLAND01", level count (4 bytes), per level: first zoom, zoom of the cells, offset of its directory (4 each)
//     directory: per cell, row by row, the offset of its outlines; 0 where there is water only
//     outlines: ring count, per ring its point count, then steps to x and y; as varints, the steps zigzag;
//     a cell is 8192 units wide, counted from its north-west corner
"use strict";

const fs = require("fs");
const path = require("path");

const LEVELS = [
  { file: "land-110m.json", firstZoom: 0, cellZoom: 0 },
  { file: "land-50m.json", firstZoom: 2, cellZoom: 2 },
  { file: "land-10m.json", firstZoom: 5, cellZoom: 5 },
];
const UNITS = 8192;
const OVERLAP = 1 / 16; // of a cell

function ringsOf(topology) {
  const { scale, translate } = topology.transform;
  const arcs = topology.arcs.map((arc) => {
    let x = 0;
    let y = 0;
    return arc.map(([dx, dy]) => {
      x += dx;
      y += dy;
      return [x * scale[0] + translate[0], y * scale[1] + translate[1]];
    });
  });
  const arcAt = (index) => (index < 0 ? arcs[~index].slice().reverse() : arcs[index]);
  const joined = (indices) => indices.flatMap((index, i) => arcAt(index).slice(i ? 1 : 0));

  const rings = [];
  for (const geometry of topology.objects.land.geometries) {
    const polygons = geometry.type === "Polygon" ? [geometry.arcs] : geometry.arcs;
    for (const polygon of polygons) for (const ring of polygon) rings.push(joined(ring));
  }
  return rings;
}

// Rings run on across the date line: longitudes are unrolled, a ring round the pole is closed below it, and what
// sticks out on one side is repeated on the other.
function unrolled(ring) {
  const points = [];
  for (const [longitude, latitude] of ring) {
    const last = points.length ? points[points.length - 1][0] : longitude;
    points.push([longitude - 360 * Math.round((longitude - last) / 360), latitude]);
  }
  const first = points[0][0];
  const last = points[points.length - 1][0];
  if (Math.abs(last - first) > 180) points.push([last, -90], [first, -90]);
  const east = Math.max(...points.map((point) => point[0]));
  const west = Math.min(...points.map((point) => point[0]));
  const shifts = [0];
  if (east > 180.0001) shifts.push(-360);
  if (west < -180.0001) shifts.push(360);
  return shifts.map((shift) => points.map(([longitude, latitude]) => [longitude + shift, latitude]));
}

// Web Mercator on the unit square; the poles are kept a little outside of it.
function projected([longitude, latitude]) {
  const sine = Math.sin((Math.max(-89, Math.min(89, latitude)) * Math.PI) / 180);
  const y = 0.5 - Math.log((1 + sine) / (1 - sine)) / (4 * Math.PI);
  return [(longitude + 180) / 360, Math.max(-0.1, Math.min(1.1, y))];
}

function clippedAt(ring, axis, edge, sign) {
  const out = [];
  const isInside = (point) => sign * (point[axis] - edge) >= 0;
  let a = ring[ring.length - 1];
  for (const b of ring) {
    if (isInside(a) !== isInside(b)) {
      const t = (edge - a[axis]) / (b[axis] - a[axis]);
      out.push([a[0] + t * (b[0] - a[0]), a[1] + t * (b[1] - a[1])]);
    }
    if (isInside(b)) out.push(b);
    a = b;
  }
  return out;
}

function clipped(rings, [west, north, east, south]) {
  const out = [];
  for (const ring of rings) {
    let part = ring;
    for (const [axis, edge, sign] of [[0, west, 1], [0, east, -1], [1, north, 1], [1, south, -1]])
      if (part.length) part = clippedAt(part, axis, edge, sign);
    if (part.length > 2) out.push(part);
  }
  return out;
}

class Bytes {
  constructor() {
    this.bytes = [];
  }
  varint(value) {
    for (; value >= 128; value = Math.floor(value / 128)) this.bytes.push((value % 128) | 128);
    this.bytes.push(value);
  }
  zigzag(value) {
    this.varint(value < 0 ? -2 * value - 1 : 2 * value);
  }
  word(value) {
    for (let shift = 0; shift < 32; shift += 8) this.bytes.push((value >>> shift) & 255);
  }
}

function inUnits(ring, cells, column, row) {
  const points = [];
  for (const [x, y] of ring) {
    const point = [Math.round((x * cells - column) * UNITS), Math.round((y * cells - row) * UNITS)];
    const last = points[points.length - 1];
    if (!last || last[0] !== point[0] || last[1] !== point[1]) points.push(point);
  }
  return points;
}

function outlines(rings, cells, column, row) {
  const kept = rings.map((ring) => inUnits(ring, cells, column, row)).filter((ring) => ring.length > 2);
  const out = new Bytes();
  if (!kept.length) return out;
  out.varint(kept.length);
  for (const ring of kept) {
    out.varint(ring.length);
    let [x, y] = [0, 0];
    for (const [nextX, nextY] of ring) {
      out.zigzag(nextX - x);
      out.zigzag(nextY - y);
      [x, y] = [nextX, nextY];
    }
  }
  return out;
}

// All cells of a zoom below one cell, by cutting it into quarters.
function cut(rings, zoom, column, row, cellZoom, found) {
  const cells = 2 ** zoom;
  const overlap = OVERLAP / 2 ** cellZoom;
  const inside = clipped(rings, [
    column / cells - overlap,
    row / cells - overlap,
    (column + 1) / cells + overlap,
    (row + 1) / cells + overlap,
  ]);
  if (zoom === cellZoom) {
    found[row * cells + column] = outlines(inside, cells, column, row).bytes;
    return;
  }
  for (const [dx, dy] of [[0, 0], [1, 0], [0, 1], [1, 1]])
    cut(inside, zoom + 1, 2 * column + dx, 2 * row + dy, cellZoom, found);
}

function main([folder, target]) {
  const levels = LEVELS.map(({ file, firstZoom, cellZoom }) => {
    const topology = JSON.parse(fs.readFileSync(path.join(folder, file)));
    const rings = ringsOf(topology).flatMap(unrolled).map((ring) => ring.map(projected));
    const cells = [];
    cut(rings, 0, 0, 0, cellZoom, cells);
    return { firstZoom, cellZoom, cells };
  });

  let offset = 12 + 12 * levels.length;
  const head = new Bytes();
  head.bytes.push(...Buffer.from("NJLAND01"));
  head.word(levels.length);
  const body = [];
  for (const { firstZoom, cellZoom, cells } of levels) {
    for (const value of [firstZoom, cellZoom, offset]) head.word(value);
    offset += 4 * cells.length;
    const directory = new Bytes();
    for (const cell of cells) {
      directory.word(cell.length ? offset : 0);
      offset += cell.length;
    }
    body.push(Buffer.from(directory.bytes), ...cells.map((cell) => Buffer.from(cell)));
  }
  fs.writeFileSync(target, Buffer.concat([Buffer.from(head.bytes), ...body]));
}

main(process.argv.slice(2));
