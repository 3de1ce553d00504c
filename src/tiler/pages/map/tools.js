/* What the visitor can do beside looking: a background map, full screen, the own position, print. Each
   function uses the page that map.js has made; what the browser, or the place of the page, does not allow has
   no button. */
(function () {
  'use strict';

  var page = window.Mosaicon = window.Mosaicon || {};

  var WORLD_TILES = 'https://tile.openstreetmap.org/{z}/{x}/{y}.png';
  var WORLD_OWNER = '&copy; <a href="https://www.openstreetmap.org/copyright">OpenStreetMap</a> contributors';
  // The map on paper, in CSS pixels. It fits both A4 and Letter with margins of 10 mm.
  var SHEETS = { landscape: [960, 590], portrait: [700, 860] };
  var PATIENCE = 8000; // milliseconds that printing waits for pictures

  // ---- The background map ----

  function addBackground() {
    // Its owner wants to be told which page shows it, and a page on a disk cannot tell.
    if (page.fromDisk) {
      page.make('p', page.nodes.panel, 'hint',
        'A background map (OpenStreetMap) can be shown when this page is on a web site.');
      return;
    }
    var world = null, node = page.button(page.nodes.panel, 'button', '', change);

    function label() {
      var offline = navigator.onLine === false;
      node.disabled = offline && !world;
      node.setAttribute('aria-pressed', world ? 'true' : 'false');
      node.textContent = world ? 'Hide OpenStreetMap' :
        offline ? 'OpenStreetMap needs the internet' : 'Show OpenStreetMap';
    }

    function change() {
      if (world) {
        world.remove();
        world = null;
      } else {
        world = L.tileLayer(WORLD_TILES, {
          attribution: WORLD_OWNER, maxNativeZoom: 19, maxZoom: page.map.options.maxZoom, zIndex: 0
        });
        world.on('tileerror', function () {
          page.say('The background map cannot be loaded at the moment. The orthophoto is not affected.');
        });
        world.addTo(page.map);
      }
      label();
    }

    window.addEventListener('online', label);
    window.addEventListener('offline', label);
    label();
  }

  // ---- Full screen ----

  function addFullScreen() {
    var root = document.documentElement;
    var open = root.requestFullscreen || root.webkitRequestFullscreen || root.msRequestFullscreen;
    var close = document.exitFullscreen || document.webkitExitFullscreen || document.msExitFullscreen;
    if (!open || !close || !(document.fullscreenEnabled || document.webkitFullscreenEnabled ||
        document.msFullscreenEnabled)) { return; }

    function isOpen() {
      return !!(document.fullscreenElement || document.webkitFullscreenElement || document.msFullscreenElement);
    }
    function refused() { page.say('The browser does not allow full screen here.'); }

    var node = page.tool('full', 'Full screen', function () {
      var answer = isOpen() ? close.call(document) : open.call(root);
      if (answer && answer['catch']) { answer['catch'](refused); }
    });
    function changed() { node.setAttribute('aria-pressed', isOpen() ? 'true' : 'false'); }
    ['fullscreenchange', 'webkitfullscreenchange', 'MSFullscreenChange'].forEach(function (name) {
      document.addEventListener(name, changed);
    });
    changed();
  }

  // ---- The visitor's position ----

  function distanceText(metres) {
    return metres < 1000 ? Math.max(1, Math.round(metres)) + ' m' : (metres / 1000).toFixed(1) + ' km';
  }

  function addOwnPosition() {
    if (page.fromDisk || !window.isSecureContext || !navigator.geolocation) { return; }
    var circle = null, dot = null;

    function found(answer) {
      var place = L.latLng(answer.coords.latitude, answer.coords.longitude), radius = answer.coords.accuracy;
      if (circle) { circle.remove(); dot.remove(); }
      circle = L.circle(place, { radius: radius, interactive: false, color: '#0b4f9e', weight: 1 });
      dot = L.circleMarker(place, {
        radius: 8, interactive: false, color: '#fff', weight: 3, fillColor: '#0b4f9e', fillOpacity: 1
      });
      circle.addTo(page.map);
      dot.addTo(page.map);
      var within = 'within about ' + distanceText(radius) + '.';
      if (page.area().contains(place)) {
        page.map.panTo(place, { animate: !page.calm });
        page.say('The blue dot shows where you are, ' + within);
      } else {
        page.fit(page.area().extend(place));
        page.say('You are outside this map. The blue dot shows where, ' + within);
      }
    }

    function failed(error) {
      page.say(error.code === 1 ? 'Your position is not shown: the browser was not allowed to tell it.' :
        error.code === 3 ? 'Finding your position took too long. Please try again.' :
          'Your device cannot find its position at the moment.');
    }

    page.tool('here', 'Where am I?', function () {
      page.say('Looking for your position \u2026');
      navigator.geolocation.getCurrentPosition(found, failed,
        { enableHighAccuracy: true, timeout: 20000, maximumAge: 10000 });
    });
  }

  // ---- Print ----

  // Leaflet draws for a window of a known size: it gets that of the sheet before the browser prints, shows the
  // same part of the map there, and everything goes back afterwards.
  function addPrint() {
    var before = null;

    function prepare() {
      if (before) { return; }
      var size = page.map.getSize(), kind = size.x >= size.y ? 'landscape' : 'portrait', sheet = SHEETS[kind];
      var seen = page.map.getBounds();
      before = { centre: page.map.getCenter(), zoom: page.map.getZoom() };
      before.rule = page.make('style', document.head);
      before.rule.textContent = '@page { size: ' + kind + '; margin: 10mm; }';
      document.body.className = 'printing';
      page.nodes.stage.style.width = sheet[0] + 'px';
      page.nodes.stage.style.height = sheet[1] + 'px';
      page.map.options.zoomSnap = 0;
      page.map.invalidateSize({ animate: false, pan: false });
      page.map.fitBounds(seen, { animate: false });
    }

    function restore() {
      if (!before) { return; }
      document.head.removeChild(before.rule);
      document.body.className = '';
      page.nodes.stage.style.width = page.nodes.stage.style.height = '';
      page.map.options.zoomSnap = 1;
      page.map.invalidateSize({ animate: false, pan: false });
      page.map.setView(before.centre, before.zoom, { animate: false });
      before = null;
    }

    function isLoading() {
      var loading = false;
      page.map.eachLayer(function (layer) { loading = loading || !!(layer.isLoading && layer.isLoading()); });
      return loading;
    }

    function printWhenLoaded(deadline) {
      if (isLoading() && Date.now() < deadline) {
        window.setTimeout(printWhenLoaded, 50, deadline);
        return;
      }
      window.print();
      if (!('onafterprint' in window)) { restore(); }
    }

    page.button(page.nodes.panel, 'button', 'Print', function () {
      prepare();
      printWhenLoaded(Date.now() + PATIENCE);
    });
    // For those who print by the browser's own menu.
    window.addEventListener('beforeprint', prepare);
    window.addEventListener('afterprint', restore);
  }

  page.addFullScreen = addFullScreen;
  page.addOwnPosition = addOwnPosition;
  page.addBackground = addBackground;
  page.addPrint = addPrint;
}());
