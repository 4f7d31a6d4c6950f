<?xml version="1.0" encoding="UTF-8"?>
<!-- SPDX-License-Identifier: GPL-3.0-or-later -->
<!--
  Answers of MusicBrainz. A single release is the full record; releases in a list, of a search or of a disc, are hits.
  The full record is loaded over its hit, and pictures are added to those of the hit: hits give small ones only.
-->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:m="http://musicbrainz.org/ns/mmd-2.0#" xmlns:exsl="http://exslt.org/common"
                exclude-result-prefixes="m exsl">
  <xsl:output method="xml" encoding="UTF-8"/>

  <xsl:variable name="upper" select="'ABCDEFGHIJKLMNOPQRSTUVWXYZ'"/>
  <xsl:variable name="lower" select="'abcdefghijklmnopqrstuvwxyz'"/>
  <xsl:variable name="digits" select="'0123456789'"/>
  <xsl:variable name="covers" select="'https://coverartarchive.org/release/'"/>

  <!-- Credits as collected from the release and its recordings, to find those that say the same again. -->
  <xsl:key name="credits" match="Credit" use="concat(@musician, '|', @credit)"/>

  <xsl:template match="/">
    <SearchResults>
      <xsl:apply-templates select="m:metadata/m:release" mode="record"/>
      <!-- A disc that is known has its releases below itself, one that was guessed by its lengths has not. -->
      <xsl:apply-templates select="m:metadata/m:release-list/m:release
                                   | m:metadata/m:disc/m:release-list/m:release" mode="hit"/>
    </SearchResults>
  </xsl:template>

  <xsl:template match="m:release" mode="hit">
    <Release>
      <xsl:call-template name="release-attributes"/>
      <xsl:call-template name="release-types"/>
      <xsl:call-template name="labels"/>
      <xsl:call-template name="tracks"/>
      <!-- Search answers do not say whether there is a cover; a picture that is not there does no harm. -->
      <xsl:if test="not(m:cover-art-archive) or m:cover-art-archive/m:front = 'true'">
        <Images>
          <Image type="thumb"><xsl:value-of select="concat($covers, @id, '/front-250')"/></Image>
        </Images>
      </xsl:if>
    </Release>
  </xsl:template>

  <xsl:template match="m:release" mode="record">
    <xsl:variable name="genres">
      <xsl:call-template name="genres"/>
    </xsl:variable>
    <Release>
      <xsl:call-template name="release-attributes"/>
      <xsl:call-template name="attribute">
        <xsl:with-param name="name" select="'GENRE'"/>
        <xsl:with-param name="value" select="exsl:node-set($genres)/Genre[1]"/>
      </xsl:call-template>
      <xsl:if test="exsl:node-set($genres)/Genre">
        <Genres><xsl:copy-of select="$genres"/></Genres>
      </xsl:if>
      <xsl:call-template name="release-types"/>
      <xsl:call-template name="labels"/>
      <xsl:call-template name="credits"/>
      <xsl:call-template name="tracks"/>
      <xsl:call-template name="large-images"/>
    </Release>
  </xsl:template>

  <!-- An attribute, unless there is nothing to say: an empty one would empty the field. -->
  <xsl:template name="attribute">
    <xsl:param name="name"/>
    <xsl:param name="value"/>
    <xsl:if test="normalize-space($value) != ''">
      <xsl:attribute name="{$name}"><xsl:value-of select="normalize-space($value)"/></xsl:attribute>
    </xsl:if>
  </xsl:template>

  <xsl:template name="release-attributes">
    <xsl:attribute name="RELEASE_ID"><xsl:value-of select="@id"/></xsl:attribute>
    <xsl:attribute name="MUSICBRAINZ_ID"><xsl:value-of select="@id"/></xsl:attribute>
    <xsl:attribute name="DATAPROVIDER">MusicBrainz</xsl:attribute>
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'ARTIST_ID'"/>
      <xsl:with-param name="value" select="m:artist-credit/m:name-credit[1]/m:artist/@id"/>
    </xsl:call-template>
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'ARTIST'"/>
      <xsl:with-param name="value"><xsl:apply-templates select="m:artist-credit"/></xsl:with-param>
    </xsl:call-template>
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'RELEASE_TITLE'"/>
      <xsl:with-param name="value" select="m:title"/>
    </xsl:call-template>
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'RELEASE_TYPE'"/>
      <xsl:with-param name="value">
        <xsl:call-template name="media-type">
          <xsl:with-param name="format" select="m:medium-list/m:medium[m:format != ''][1]/m:format"/>
        </xsl:call-template>
      </xsl:with-param>
    </xsl:call-template>
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'ASIN'"/>
      <xsl:with-param name="value" select="m:asin"/>
    </xsl:call-template>
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'EAN'"/>
      <xsl:with-param name="value" select="m:barcode"/>
    </xsl:call-template>
    <!-- Texts in square brackets stand for "there is none". -->
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'LABEL'"/>
      <xsl:with-param name="value"
                      select="m:label-info-list/m:label-info/m:label/m:name[not(starts-with(., '['))][1]"/>
    </xsl:call-template>
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'CATALOG_NO'"/>
      <xsl:with-param name="value"
                      select="m:label-info-list/m:label-info/m:catalog-number[. != '' and not(starts-with(., '['))]"/>
    </xsl:call-template>
    <xsl:call-template name="dates"/>
    <!-- XE is Europe and XW the whole world. -->
    <xsl:if test="m:country != 'XE' and m:country != 'XW'">
      <xsl:call-template name="attribute">
        <xsl:with-param name="name" select="'COUNTRY'"/>
        <xsl:with-param name="value" select="m:country"/>
      </xsl:call-template>
    </xsl:if>
    <xsl:if test="m:medium-list/m:medium">
      <xsl:attribute name="NUMBEROFDISCS"><xsl:value-of select="count(m:medium-list/m:medium)"/></xsl:attribute>
    </xsl:if>
  </xsl:template>

  <!-- A date may be a year or a month only; it is a date of the collection when the day is known. -->
  <xsl:template name="dates">
    <xsl:variable name="shape" select="translate(m:date, $digits, '0000000000')"/>
    <xsl:if test="$shape = '0000-00-00'">
      <xsl:attribute name="RELEASE_DATE"><xsl:value-of select="m:date"/></xsl:attribute>
    </xsl:if>
    <xsl:if test="starts-with($shape, '0000')">
      <xsl:attribute name="RELEASE_YEAR"><xsl:value-of select="substring(m:date, 1, 4)"/></xsl:attribute>
    </xsl:if>
  </xsl:template>

  <!-- The names as they are printed on the release, joined as they are there. -->
  <xsl:template match="m:artist-credit">
    <xsl:for-each select="m:name-credit">
      <xsl:value-of select="(m:name | m:artist/m:name)[. != ''][1]"/>
      <xsl:value-of select="@joinphrase"/>
    </xsl:for-each>
  </xsl:template>

  <xsl:template name="media-type">
    <xsl:param name="format"/>
    <xsl:choose>
      <xsl:when test="contains($format, 'SACD')">SACD</xsl:when>
      <xsl:when test="contains($format, 'VCD') or $format = 'CDV'"><xsl:value-of select="$format"/></xsl:when>
      <xsl:when test="contains($format, 'DualDisc')">DualDisc</xsl:when>
      <xsl:when test="contains($format, 'Vinyl') or contains($format, 'Flexi')">Vinyl</xsl:when>
      <xsl:when test="contains($format, 'assette')">Cassette</xsl:when>
      <xsl:when test="contains($format, 'DVD')">DVD</xsl:when>
      <xsl:when test="starts-with($format, 'Blu-ray')">Blu-ray</xsl:when>
      <xsl:when test="contains($format, 'CD')">CD</xsl:when>
      <xsl:when test="starts-with($format, 'Digital') or contains($format, 'Download')">Digital</xsl:when>
      <xsl:otherwise><xsl:value-of select="$format"/></xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <xsl:template name="release-types">
    <xsl:variable name="types">
      <xsl:for-each select="m:medium-list/m:medium/m:format[. != '']">
        <ReleaseType>
          <xsl:call-template name="media-type">
            <xsl:with-param name="format" select="."/>
          </xsl:call-template>
        </ReleaseType>
      </xsl:for-each>
    </xsl:variable>
    <xsl:if test="exsl:node-set($types)/ReleaseType">
      <ReleaseTypes>
        <xsl:copy-of select="exsl:node-set($types)/ReleaseType[not(. = preceding-sibling::ReleaseType)]"/>
      </ReleaseTypes>
    </xsl:if>
  </xsl:template>

  <xsl:template name="labels">
    <xsl:variable name="names" select="m:label-info-list/m:label-info/m:label/m:name[. != '' and not(starts-with(., '['))]"/>
    <xsl:if test="$names">
      <Labels>
        <!-- A release with two numbers of one label names it twice. -->
        <xsl:for-each select="$names[not(. = ../../preceding-sibling::m:label-info/m:label/m:name)]">
          <Label><xsl:value-of select="."/></Label>
        </xsl:for-each>
      </Labels>
    </xsl:if>
  </xsl:template>

  <!-- Genres by the votes for them: of the release, else of all its editions, else of its artist. -->
  <xsl:template name="genres">
    <xsl:variable name="own" select="m:genre-list/m:genre[@count &gt; 0]"/>
    <xsl:variable name="group" select="m:release-group/m:genre-list/m:genre[@count &gt; 0]"/>
    <xsl:variable name="artist" select="m:artist-credit/m:name-credit[1]/m:artist/m:genre-list/m:genre[@count &gt; 0]"/>
    <xsl:for-each select="$own | $group[not($own)] | $artist[not($own or $group)]">
      <xsl:sort select="@count" data-type="number" order="descending"/>
      <xsl:sort select="m:name"/>
      <Genre>
        <xsl:call-template name="capitalised">
          <xsl:with-param name="text" select="m:name"/>
        </xsl:call-template>
      </Genre>
    </xsl:for-each>
  </xsl:template>

  <!-- Genres come in small letters, while the lists of the program and the other services write "Hip Hop". -->
  <xsl:template name="capitalised">
    <xsl:param name="text"/>
    <xsl:choose>
      <xsl:when test="contains('|aor|ebm|edm|idm|r&amp;b|', concat('|', $text, '|'))">
        <xsl:value-of select="translate($text, $lower, $upper)"/>
      </xsl:when>
      <xsl:when test="contains($text, ' ') and string-length($text) &lt; 500">
        <xsl:call-template name="first-raised">
          <xsl:with-param name="text" select="substring-before($text, ' ')"/>
        </xsl:call-template>
        <xsl:text> </xsl:text>
        <xsl:call-template name="capitalised">
          <xsl:with-param name="text" select="substring-after($text, ' ')"/>
        </xsl:call-template>
      </xsl:when>
      <xsl:otherwise>
        <xsl:call-template name="first-raised">
          <xsl:with-param name="text" select="$text"/>
        </xsl:call-template>
      </xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <xsl:template name="first-raised">
    <xsl:param name="text"/>
    <xsl:value-of select="concat(translate(substring($text, 1, 1), $lower, $upper), substring($text, 2))"/>
  </xsl:template>

  <!-- Who did what, of the release itself, of its recordings and of the works that were recorded, each once. -->
  <xsl:template name="credits">
    <xsl:variable name="recordings" select="m:medium-list/m:medium/m:track-list/m:track/m:recording"/>
    <xsl:variable name="all">
      <xsl:apply-templates select="m:relation-list[@target-type = 'artist']/m:relation
                                   | $recordings/m:relation-list[@target-type = 'artist']/m:relation
                                   | $recordings/m:relation-list[@target-type = 'work']/m:relation/m:work
                                     /m:relation-list[@target-type = 'artist']/m:relation"/>
    </xsl:variable>
    <xsl:if test="exsl:node-set($all)/Credit">
      <Credits>
        <xsl:for-each select="exsl:node-set($all)/Credit">
          <xsl:if test="generate-id() = generate-id(key('credits', concat(@musician, '|', @credit))[1])">
            <xsl:copy-of select="."/>
          </xsl:if>
        </xsl:for-each>
      </Credits>
    </xsl:if>
  </xsl:template>

  <xsl:template match="m:relation">
    <xsl:variable name="refined" select="'|additional|assistant|associate|co|executive|guest|solo|'"/>
    <xsl:variable name="played"
                  select="m:attribute-list/m:attribute[not(contains($refined, concat('|', ., '|')))]"/>
    <xsl:choose>
      <!-- The instrument or the kind of voice is the credit; several are several credits. -->
      <xsl:when test="(@type = 'instrument' or @type = 'vocal') and $played">
        <xsl:for-each select="$played">
          <xsl:call-template name="credit">
            <xsl:with-param name="musician" select="../../m:artist/m:name"/>
            <xsl:with-param name="role" select="."/>
          </xsl:call-template>
        </xsl:for-each>
      </xsl:when>
      <xsl:otherwise>
        <xsl:call-template name="credit">
          <xsl:with-param name="musician" select="m:artist/m:name"/>
          <xsl:with-param name="role">
            <xsl:for-each select="m:attribute-list/m:attribute[contains($refined, concat('|', ., '|'))]">
              <xsl:value-of select="."/>
              <xsl:choose>
                <xsl:when test=". = 'co'">-</xsl:when>
                <xsl:otherwise><xsl:text> </xsl:text></xsl:otherwise>
              </xsl:choose>
            </xsl:for-each>
            <xsl:value-of select="@type"/>
          </xsl:with-param>
        </xsl:call-template>
      </xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <xsl:template name="credit">
    <xsl:param name="musician"/>
    <xsl:param name="role"/>
    <xsl:if test="$musician != ''">
      <Credit musician="{$musician}">
        <xsl:attribute name="credit">
          <xsl:call-template name="first-raised">
            <xsl:with-param name="text" select="$role"/>
          </xsl:call-template>
        </xsl:attribute>
      </Credit>
    </xsl:if>
  </xsl:template>

  <!-- Search answers only count the tracks. What is hidden before the first track and data tracks stand in lists of
       their own and are left out: they have no number that a disc's player shows. -->
  <xsl:template name="tracks">
    <xsl:variable name="releaseArtist"><xsl:apply-templates select="m:artist-credit"/></xsl:variable>
    <xsl:if test="m:medium-list/m:medium/m:track-list/m:track">
      <Tracks>
        <xsl:for-each select="m:medium-list/m:medium">
          <xsl:variable name="disc">
            <xsl:choose>
              <xsl:when test="m:position &gt; 0"><xsl:value-of select="m:position"/></xsl:when>
              <xsl:otherwise><xsl:value-of select="position()"/></xsl:otherwise>
            </xsl:choose>
          </xsl:variable>
          <xsl:for-each select="m:track-list/m:track">
            <xsl:call-template name="track">
              <xsl:with-param name="disc" select="$disc"/>
              <xsl:with-param name="no" select="position()"/>
              <xsl:with-param name="releaseArtist" select="$releaseArtist"/>
            </xsl:call-template>
          </xsl:for-each>
        </xsl:for-each>
      </Tracks>
    </xsl:if>
  </xsl:template>

  <xsl:template name="track">
    <xsl:param name="disc"/>
    <xsl:param name="no"/>
    <xsl:param name="releaseArtist"/>
    <!-- A track can be named and credited otherwise than the recording that it holds. -->
    <xsl:variable name="artist">
      <xsl:apply-templates select="(m:artist-credit | m:recording/m:artist-credit)[1]"/>
    </xsl:variable>
    <xsl:variable name="length" select="(m:length | m:recording/m:length)[. &gt; 0][1]"/>
    <xsl:variable name="side" select="translate(m:number, $digits, '')"/>
    <Track TRACK_NO="{$no}" DISC_NO="{$disc}">
      <xsl:call-template name="attribute">
        <xsl:with-param name="name" select="'TRACK_ID'"/>
        <xsl:with-param name="value" select="m:recording/@id"/>
      </xsl:call-template>
      <xsl:call-template name="attribute">
        <xsl:with-param name="name" select="'TRACK_TITLE'"/>
        <xsl:with-param name="value" select="(m:title | m:recording/m:title)[. != ''][1]"/>
      </xsl:call-template>
      <xsl:if test="$artist != $releaseArtist">
        <xsl:call-template name="attribute">
          <xsl:with-param name="name" select="'TRACK_ARTIST'"/>
          <xsl:with-param name="value" select="$artist"/>
        </xsl:call-template>
      </xsl:if>
      <xsl:if test="$length">
        <xsl:attribute name="TRACK_DURATION_SEC"><xsl:value-of select="round($length div 1000)"/></xsl:attribute>
      </xsl:if>
      <!-- Records and cassettes number their tracks A1, A2, B1. -->
      <xsl:if test="$side != '' and string-length($side) &lt; 3 and translate($side, $upper, '') = ''">
        <xsl:attribute name="SIDE"><xsl:value-of select="$side"/></xsl:attribute>
      </xsl:if>
    </Track>
  </xsl:template>

  <!-- Not the originals, which may be very large. -->
  <xsl:template name="large-images">
    <xsl:variable name="front" select="not(m:cover-art-archive) or m:cover-art-archive/m:front = 'true'"/>
    <xsl:variable name="back" select="m:cover-art-archive/m:back = 'true'"/>
    <xsl:if test="$front or $back">
      <Images>
        <xsl:if test="$front">
          <Image type="large"><xsl:value-of select="concat($covers, @id, '/front-1200')"/></Image>
        </xsl:if>
        <xsl:if test="$back">
          <Image type="back-large"><xsl:value-of select="concat($covers, @id, '/back-1200')"/></Image>
        </xsl:if>
      </Images>
    </xsl:if>
  </xsl:template>
</xsl:stylesheet>
