#!/usr/bin/env bash
# Regenerates data/system/cp.mdb, the postal code list behind the town help of
# the patient cards, from the npm package codes-postaux (French postal codes
# from INSEE's Code officiel géographique and the DGFiP's FIMOCT). Run by hand
# when the list should be refreshed; the build never runs it.
#
#   scripts/generer-cp-mdb.sh [version]     (default: the version shipped now)
#
# Needs node, npm and the sqlite3 command line tool. The file is a SQLite base
# with one table CP (columns CP and Localité), one row per distinct pair.
set -euo pipefail

version="${1:-4.1.2}"
racine="$(cd "$(dirname "$0")/.." && pwd)"
cible="$racine/data/system/cp.mdb"
travail="$(mktemp -d)"
trap 'rm -rf "$travail"' EXIT

npm install --prefix "$travail" --no-save --no-audit --no-fund --silent "codes-postaux@$version"
source_json="$travail/node_modules/codes-postaux/codes-postaux.json"

node - "$source_json" >"$travail/cp.sql" <<'JS'
// The town is the package's libelleAcheminement: the town line that La Poste
// routes mail by and that goes under the street on an envelope, so it is what
// a secretary types into the Ville field of an address. nomCommune would give
// "Paris 1er Arrondissement" for 75001, and the name of the new merged commune
// where the patient (and the post) still name the old village.
//
// A few hundred labels carry their article at the end ("BAUX-DE-PROVENCE
// (LES)", "ILE-D AIX (L )") and a few have stray blanks around a hyphen;
// these are put in the form written on an envelope ("LES BAUX-DE-PROVENCE"),
// which is also the form a map search understands.
const fs = require('fs')
const lignes = JSON.parse(fs.readFileSync(process.argv[2], 'utf8'))

function ville(libelle) {
  let v = libelle.replace(/\s+/g, ' ').replace(/ ?- ?/g, '-').replace(/ \)/g, ')').trim()
  const m = v.match(/^(.+?) ?\((LES|LE|LA|L'?)\)$/)
  if (m)
    v = m[2].startsWith('L\'') || m[2] === 'L' ? `L'${m[1]}` : `${m[2]} ${m[1]}`
  return v
}

const paires = new Map()
for (const l of lignes) {
  const code = String(l.codePostal).trim()
  const nom = ville(String(l.libelleAcheminement || ''))
  if (code || nom)
    paires.set(`${code}\u0000${nom}`, [code, nom])
}
// Sorted, so that the same list always gives the same file.
const tri = [...paires.values()].sort((a, b) => (a[0] < b[0] ? -1 : a[0] > b[0] ? 1 : a[1] < b[1] ? -1 : a[1] > b[1] ? 1 : 0))
const sql = s => `'${s.replace(/'/g, "''")}'`
const sortie = ['BEGIN;', 'CREATE TABLE CP (CP TEXT, "Localité" TEXT);']
for (const [code, nom] of tri)
  sortie.push(`INSERT INTO CP VALUES (${sql(code)}, ${sql(nom)});`)
sortie.push('CREATE INDEX CP_CP ON CP (CP);', 'COMMIT;', 'VACUUM;')
process.stdout.write(sortie.join('\n') + '\n')
JS

sqlite3 "$travail/cp.mdb" <"$travail/cp.sql"
# Made aside and moved into place: a failed run leaves the old file whole.
mv -f "$travail/cp.mdb" "$cible"
echo "$cible: $(sqlite3 "$cible" 'SELECT count(*) FROM CP') lignes, $(wc -c <"$cible") octets"
